#pragma once
// The maker's status-bar progress bar. A long scan starts it with a message and its
// number of steps, advances it once per item and ends it; the bar goes to the host's
// progress sink (host/db/Progress.h).
#include "host/arx/adesk.h"
#include "kplan/Export.h"

namespace KovaCad {

class KPLAN_API CStatusBarControl {
  public:
    CStatusBarControl() = default;
    // A bar still shown is ended, so an early return cannot leave it on the screen.
    ~CStatusBarControl();
    CStatusBarControl(const CStatusBarControl&) = delete;
    CStatusBarControl& operator=(const CStatusBarControl&) = delete;

    // Shows the bar; a bar this object already shows is ended first. A negative total
    // counts as 0.
    void start(const ACHAR* message, long total);
    // Advances by count steps, never past the total; nothing without a bar.
    void step(long count = 1);
    void end();

    bool isRunning() const { return running_; }
    long position() const { return position_; }
    long total() const { return total_; }

  private:
    bool running_ = false;
    long position_ = 0;
    long total_ = 0;
};

}  // namespace KovaCad
