// Tells on standard error what is being measured and how long the rest will take: one line that is redrawn on a
// terminal, else a line for each tenth.
#pragma once

#include <string>
#include <vector>

namespace bench {

class Progress {
  public:
    // Of all names those count that Google Benchmark takes for this --benchmark_filter.
    Progress(const std::vector<std::string>& names, const std::string& filter, int repetitions);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // A measurement begins. What a name's first ones add, which only find out how often to repeat, is not counted.
    static void Begins(const std::string& name);
};

} // namespace bench
