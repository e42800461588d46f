// The platform layer: log routing, clock, thread names, data paths, UTF-8 paths.
#include <chrono>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>

#include <kelvo/clock.h>
#include <kelvo/log.h>
#include <kelvo/os.h>
#include <kelvo/path.h>
#include <kelvo/unicode.h>

namespace fs = boost::filesystem;

TEST(KelvoLog, HandlerGetsEveryLevelThenTheWriterPrintsUpToItsVerbosity) {
    std::vector<std::string> seen;
    kelvo::log::setHandler([&](int level, const std::string& category, const std::string& message) {
        seen.push_back(std::to_string(level) + " " + category + " " + message);
        if (message == "outer")  // a handler that logs must not deadlock
            kelvo::log::log(6, category, "inner", __FILE__, __func__, __LINE__);
    });
    kelvo::log::setVerbosity(1);  // the handler ignores the default writer's verbosity
    kelvo::log::log(6, "a.b", "outer", __FILE__, __func__, __LINE__);
    kelvo::log::log(1, "tessarity.port      ", "x", __FILE__, __func__, __LINE__);
    kelvo::log::setHandler(kelvo::log::Handler());
    EXPECT_EQ(seen, (decltype(seen){"6 a.b outer", "6 a.b inner", "1 tessarity.port       x"}));

    // Without a handler, the default writer prints to stderr up to its verbosity.
    testing::internal::CaptureStderr();
    kelvo::log::log(2, "cat", "hidden", __FILE__, __func__, __LINE__);
    kelvo::log::setVerbosity(6);
    kelvo::log::log(6, "cat", "debug now", __FILE__, __func__, __LINE__);
    kelvo::log::setVerbosity(4);  // the default
    kelvo::log::log(4, "cat", "shown", __FILE__, __func__, __LINE__);
    kelvo::log::log(5, "cat", "hidden", __FILE__, __func__, __LINE__);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "[debug] cat: debug now\n[info] cat: shown\n");
}

TEST(KelvoOs, ClockAndThreadNames) {
    const auto system = std::chrono::system_clock::now().time_since_epoch();
    EXPECT_LT(std::llabs(kelvo::Clock::now() - system / std::chrono::nanoseconds(1)), 1000000000LL);
    // A name keeps 15 bytes (the cut of a plain name shows in the workers' names) and is never
    // cut inside a character, here of 2 bytes each.
    std::string named;
    std::thread([&] {
        kelvo::os::setCurrentThreadName("TesWrk_x\xc3\xa9\xc3\xa9\xc3\xa9\xc3\xa9");
        named = kelvo::os::getCurrentThreadName();
    }).join();
    EXPECT_EQ(named, "TesWrk_x\xc3\xa9\xc3\xa9\xc3\xa9");
}

TEST(KelvoPath, FindDataSearchesRootsInOrderAndPathsConvertFromUtf8) {
    const fs::path base = fs::temp_directory_path() / fs::unique_path("kelvo-%%%%%%%%");
    // A directory is no match.
    for (const char* dir : {"first/app", "second/app/dir.xml"}) fs::create_directories(base / dir);
    for (const char* file : {"first/app/both.xml", "second/app/both.xml", "second/app/only.xml"})
        std::ofstream((base / file).string()) << "x";
    for (const char* root : {"first", "second"}) kelvo::path::addDataPath((base / root).string());
    const std::string both = (base / "first/app/both.xml").string();
    EXPECT_EQ(kelvo::path::findData("app", "both.xml", true), both);
    EXPECT_EQ(kelvo::path::findData("app", "only.xml", true),
              (base / "second/app/only.xml").string());
    EXPECT_EQ(kelvo::path::findData("app", "dir.xml", true), "");
    EXPECT_EQ(kelvo::path::findData("app", "missing.xml", false), "");
    EXPECT_EQ(kelvo::path::findData("other", both, true), both);  // an absolute path stands
    fs::remove_all(base);

    const fs::path path(std::wstring(L"caf\u00e9.tsp"), kelvo::unicodeFacet());
    EXPECT_EQ(path.string(kelvo::unicodeFacet()), "caf\xc3\xa9.tsp");
    const fs::path back(std::string("\xc3\xa9t\xc3\xa9"), kelvo::unicodeFacet());
    EXPECT_EQ(back.wstring(kelvo::unicodeFacet()), L"\u00e9t\u00e9");
}
