#include <yxfrontpanel/testing/golden_file.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace yxfrontpanel::testing {

namespace {

bool updateRequested() {
    // Tests read the environment; they do not change it while other threads run.
    char const* const value = std::getenv(kUpdateGoldenVariable);  // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && std::string(value) == "1";
}

}  // namespace

GoldenComparison compareWithGoldenFile(std::string const& actual, std::string const& path) {
    std::string const update = std::string(kUpdateGoldenVariable) + "=1";
    if (updateRequested()) {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file << actual;
        file.flush();
        if (!file) {
            return {false, "cannot write the golden file " + path +
                               " (does its folder exist, may it be written?)"};
        }
        return {true, "rewrote the golden file " + path + " (" + update + " is set)"};
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return {false, "cannot read the golden file " + path + "; run the test with " + update +
                           " to create it from the actual text"};
    }
    std::string const expected{std::istreambuf_iterator<char>(file),
                               std::istreambuf_iterator<char>()};
    if (expected == actual) {
        return {true, ""};
    }
    return {false, path + " differs from the actual text (- expected, + actual); " + update +
                       " rewrites it:\n" + lineDiff(expected, actual)};
}

}  // namespace yxfrontpanel::testing
