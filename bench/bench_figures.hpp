#pragma once

#include <algorithm>
#include <vector>

namespace perchftp::bench {

// The middle one of an odd number of timed runs (the upper middle of an even number).
inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace perchftp::bench
