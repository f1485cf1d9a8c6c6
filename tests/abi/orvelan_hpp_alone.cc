// orvelan.hpp must stand on its own: nothing but the header in this unit.
#include "orvelan.hpp"
