// Reading whole inputs for the vkpch tool.
#pragma once

#include <string>
#include <vector>

// Reads a file ("-" for standard input) into data. On failure returns false
// and sets error to a one-line reason.
bool ReadInput(const std::string& path, std::vector<unsigned char>& data, std::string& error);
