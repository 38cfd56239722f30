#pragma once

#include "TTempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace tarn {

/// The error that a call ends with as "CODE text"; "none" when it ends without one.
template <class F> std::string ErrorOf(F&& call) {
    try {
        call();
    } catch (const EScriptError& error) {
        return std::to_string(error.ExitCode()) + " " + error.what();
    } catch (const std::exception& error) {
        return std::string("other ") + error.what();
    }
    return "none";
}

inline std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteFile(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

} // namespace tarn
