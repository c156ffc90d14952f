#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

namespace vantrel::testing {

// A writable copy of a fixture tree (a fake / with proc and sys) in a fresh temporary directory, removed
// again at the end of the test. Files are rewritten in place, as the kernel changes them.
class FixtureTree {
public:
    explicit FixtureTree(std::string_view fixture = {})
    {
        std::random_device entropy;
        directory = std::filesystem::temp_directory_path() /
                    ("vantrel-fixture-" + std::to_string(entropy()) + "-" + std::to_string(entropy()));
        std::filesystem::create_directories(directory);
        if (!fixture.empty())
            std::filesystem::copy(source(fixture), directory, std::filesystem::copy_options::recursive);
    }
    ~FixtureTree()
    {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    FixtureTree(const FixtureTree&) = delete;
    FixtureTree& operator=(const FixtureTree&) = delete;

    static std::filesystem::path source(std::string_view fixture)
    {
        return std::filesystem::path(VANTREL_FIXTURES) / "telemetry" / fixture;
    }

    const std::filesystem::path& root() const { return directory; }

    void write(const std::string& relative, std::string_view text) const
    {
        const auto path = directory / relative;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    }

    void remove(const std::string& relative) const { std::filesystem::remove_all(directory / relative); }

private:
    std::filesystem::path directory;
};

} // namespace vantrel::testing
