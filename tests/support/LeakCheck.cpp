#include "tests/support/LeakCheck.h"
