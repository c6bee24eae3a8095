// Dates in a log line, reordered with vkpch.hpp.
#include <cstdio>
#include <string>

#include "vkpch.hpp"

int main() {
    const vkpch::Regex date("(\\d{4})-(\\d\\d)-(\\d\\d)", "g");
    const vkpch::Template swap("$3/$2/$1");
    if (!date.ok() || !swap.ok()) return 1;
    const std::string line = "from 2024-01-31 to 2024-02-29";
    const auto first = date.find(line);
    if (!first || first->group(2) != std::string_view("01") || date.findAll(line).size() != 2) return 1;
    std::printf("%s\n", date.replace(line, swap).c_str());
    return 0;
}
