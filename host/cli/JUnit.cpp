#include "host/cli/JUnit.h"

#include <algorithm>

namespace host::cli {

namespace {

/// Text for an attribute or an element. Line ends become references, which no reader changes; other control
/// characters, which XML cannot hold, become U+FFFD.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        switch (letter) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        case '\t': result += "&#9;"; break;
        case '\n': result += "&#10;"; break;
        case '\r': result += "&#13;"; break;
        default:
            if (static_cast<unsigned char>(letter) < ' ')
                result += "\xEF\xBF\xBD";
            else
                result += letter;
        }
    }
    return result;
}

std::string elementOf(const TestCase& test) {
    if (!test.failure.empty()) return "<failure message=\"" + escaped(test.failure) + "\"/>";
    return test.skipped.empty() ? "" : "<skipped message=\"" + escaped(test.skipped) + "\"/>";
}

std::string counts(std::vector<TestCase>::const_iterator begin, std::vector<TestCase>::const_iterator end) {
    const auto failures =
        std::count_if(begin, end, [](const TestCase& test) { return !test.failure.empty(); });
    const auto skipped =
        std::count_if(begin, end, [](const TestCase& test) { return !test.skipped.empty(); });
    return " tests=\"" + std::to_string(end - begin) + "\" failures=\"" + std::to_string(failures) +
           (skipped > 0 ? "\" skipped=\"" + std::to_string(skipped) : "") + "\">\n";
}

} // namespace

std::string junitReport(const std::vector<TestCase>& tests) {
    std::string report =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" + counts(tests.begin(), tests.end());
    for (auto begin = tests.begin(); begin != tests.end();) {
        const auto end = std::find_if(begin, tests.end(),
                                      [begin](const TestCase& test) { return test.suite != begin->suite; });
        const std::string suite = escaped(begin->suite);
        report += "  <testsuite name=\"" + suite + "\"" + counts(begin, end);
        for (; begin != end; ++begin) {
            report += "    <testcase classname=\"" + suite + "\" name=\"" + escaped(begin->name) + "\"";
            const std::string element = elementOf(*begin);
            report += element.empty() ? "/>\n" : ">\n      " + element + "\n    </testcase>\n";
        }
        report += "  </testsuite>\n";
    }
    return report + "</testsuites>\n";
}

} // namespace host::cli
