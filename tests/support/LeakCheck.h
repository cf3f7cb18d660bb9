#pragma once
// Fails the running test when it leaves an object open, a result-buffer list
// unreleased or a selection set unfreed.
#include <gtest/gtest.h>

#include "host/db/Leaks.h"

class LeakCheck {
  public:
    LeakCheck() : before_(db::leakCounts()) {}
    // Empty when nothing leaked since construction; else what did.
    std::string leaks() const { return db::describeLeaks(before_, db::leakCounts()); }
    void expectNone() const { EXPECT_EQ(leaks(), "") << "the test left resources behind"; }

  private:
    db::LeakCounts before_;
};
