#include "CompareOpenProbe.h"

namespace CompareOpenProbe {
bool Available()
{
    return false;
}
int Measure(int, char**, long long (*)())
{
    return 1;
}
} // namespace CompareOpenProbe
