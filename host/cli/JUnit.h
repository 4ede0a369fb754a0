#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host::cli {

/// A test as the reports of continuous integration know it. All texts are UTF-8.
struct TestCase {
    std::string suite; ///< tests of the same suite stand next to each other
    std::string name;
    std::string failure;   ///< empty: it did not fail
    std::string skipped{}; ///< why it was left out; empty: it was not
};

/// A report in JUnit's XML.
std::string junitReport(const std::vector<TestCase>& tests);

} // namespace host::cli
