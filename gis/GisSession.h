#pragma once
// GDAL made ready for a call: its drivers registered (once per process) and its messages
// kept for the caller's error text instead of printed, while the object lives.
namespace gis {

class Session {
  public:
    Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();
};

}  // namespace gis
