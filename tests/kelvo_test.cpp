// The platform layer: log routing, clock, thread names, data paths, UTF-8 paths.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>

#include <kelvo/clock.h>
#include <kelvo/log.h>
#include <kelvo/os.h>
#include <kelvo/path.h>
#include <kelvo/unicode.h>

#include "logcapture.h"

TEST(KelvoLog, HandlerGetsEveryLevelAndMayLogItself) {
    std::vector<std::string> seen;
    kelvo::log::setHandler([&](int level, const std::string& category, const std::string& message) {
        seen.push_back(std::to_string(level) + " " + category + " " + message);
        if (message == "outer")  // a handler that logs must not deadlock
            kelvo::log::log(6, category, "inner", __FILE__, __func__, __LINE__);
    });
    kelvo::log::setVerbosity(1);  // the handler ignores the default writer's verbosity
    kelvo::log::log(6, "a.b", "outer", __FILE__, __func__, __LINE__);
    kelvo::log::log(1, "tessarity.port      ", "x", __FILE__, __func__, __LINE__);
    kelvo::log::setVerbosity(4);
    kelvo::log::setHandler(kelvo::log::Handler());
    EXPECT_EQ(seen,
              (std::vector<std::string>{"6 a.b outer", "6 a.b inner", "1 tessarity.port       x"}));
}

TEST(KelvoLog, DefaultWriterPrintsUpToItsVerbosity) {
    testing::internal::CaptureStderr();
    kelvo::log::log(4, "cat", "shown", __FILE__, __func__, __LINE__);
    kelvo::log::log(5, "cat", "hidden", __FILE__, __func__, __LINE__);
    kelvo::log::setVerbosity(6);
    kelvo::log::log(6, "cat", "debug now", __FILE__, __func__, __LINE__);
    kelvo::log::setVerbosity(4);
    std::string out = testing::internal::GetCapturedStderr();
    EXPECT_EQ(out, "[info] cat: shown\n[debug] cat: debug now\n");
}

TEST(KelvoOs, ClockAndThreadNames) {
    long long system = std::chrono::duration_cast<std::chrono::nanoseconds>(
                           std::chrono::system_clock::now().time_since_epoch())
                           .count();
    EXPECT_LT(std::llabs(kelvo::Clock::now() - system), 1000000000LL);

    std::string named;
    std::thread([&] {
        kelvo::os::setCurrentThreadName("TesWrk_a_very_long_process_name");
        named = kelvo::os::getCurrentThreadName();
        kelvo::os::setCurrentThreadName(
            "TesWrk_x\xc3\xa9\xc3\xa9\xc3\xa9\xc3\xa9");  // 2 bytes each
        named += "|" + kelvo::os::getCurrentThreadName();
    }).join();
    EXPECT_EQ(named, "TesWrk_a_very_l|TesWrk_x\xc3\xa9\xc3\xa9\xc3\xa9");
}

TEST(KelvoPath, FindDataSearchesRootsInOrder) {
    namespace fs = boost::filesystem;
    fs::path base = fs::temp_directory_path() / fs::unique_path("kelvo-%%%%%%%%");
    fs::create_directories(base / "first" / "app");
    fs::create_directories(base / "second" / "app" / "dir.xml");  // a directory is no match
    std::ofstream((base / "second" / "app" / "both.xml").string()) << "x";
    std::ofstream((base / "first" / "app" / "both.xml").string()) << "x";
    std::ofstream((base / "second" / "app" / "only.xml").string()) << "x";

    kelvo::path::addDataPath((base / "first").string());
    kelvo::path::addDataPath((base / "second").string());
    EXPECT_EQ(kelvo::path::findData("app", "both.xml", true),
              (base / "first" / "app" / "both.xml").string());
    EXPECT_EQ(kelvo::path::findData("app", "only.xml", true),
              (base / "second" / "app" / "only.xml").string());
    EXPECT_EQ(kelvo::path::findData("app", "dir.xml", true), "");
    EXPECT_EQ(kelvo::path::findData("app", "missing.xml", false), "");
    const std::string absolute = (base / "first" / "app" / "both.xml").string();
    EXPECT_EQ(kelvo::path::findData("other", absolute, true), absolute);
    fs::remove_all(base);
}

TEST(KelvoUnicode, FacetConvertsUtf8Paths) {
    boost::filesystem::path path(std::wstring(L"caf\u00e9.tsp"), kelvo::unicodeFacet());
    EXPECT_EQ(path.string(kelvo::unicodeFacet()), "caf\xc3\xa9.tsp");
    boost::filesystem::path back(std::string("\xc3\xa9t\xc3\xa9"), kelvo::unicodeFacet());
    EXPECT_EQ(back.wstring(kelvo::unicodeFacet()), L"\u00e9t\u00e9");
}
