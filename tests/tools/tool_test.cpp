// tessarity-run and generate_frames as a user runs them: small programs of flow filters,
// what they print, their exit status, and the line that refused input gets.
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "image_files.h"

namespace fs = std::filesystem;

namespace {

struct Result {
    int status;
    std::string out, err;
};

std::string slurp(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// Runs `command` (a shell line) in `dir`, with stdout and stderr kept apart.
Result run(const fs::path& dir, const std::string& command) {
    const std::string line =
        "cd '" + dir.string() + "' && " + command + " >stdout.txt 2>stderr.txt";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, slurp(dir / "stdout.txt"),
            slurp(dir / "stderr.txt")};
}

class RunTool : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::path(::testing::TempDir()) /
              (std::string("tessarity_run_") +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir / "empty");
        std::ofstream(dir / "echo.tsp")
            << "source value { }\nsource picture { }\n"
               "process Echo (Identity, 3, 30.0) { in <= value; out => out }\n"
               "process Picture (Identity, 3, 30.0) { in <= picture; out => out }\n";
        std::ofstream(dir / "slow.tsp")
            << "source value { 5 }\nprocess Slow (Identity) { in <= value; out => out }\n";
        std::ofstream(dir / "broken.tsp") << "process Lost (NoSuchFilter) { in <= nowhere }\n";
    }
    Result tool(const std::string& arguments) { return run(dir, std::string(TESSARITY_RUN) + " " + arguments); }
    Result frames(const std::string& arguments) { return run(dir, std::string(GENERATE_FRAMES) + " " + arguments); }

    fs::path dir;
};

}  // namespace

// Each case: the arguments, the exit status, a text that stdout holds (nothing else when the
// status is not 0) and one that stderr holds.
TEST_F(RunTool, RunsShowsAndRefuses) {
    ASSERT_EQ(frames("frames --count 3").status, 0);
    const std::string noDot = "env PATH=/nonexistent ";
    const struct {
        std::string arguments;
        int status;
        const char* out;
        const char* err;
    } cases[] = {
        {"echo.tsp --set value=3 --get Echo:out", 0, "Echo:out  3\n", "\nEcho        1 "},
        {"echo.tsp --set 'value=\"hi there\"' --get=Echo:out", 0, "Echo:out  hi there\n", ""},
        // Without --get, every sink of every process.
        {"echo.tsp --set value=2.5", 0, "Echo:out     2.5f\nPicture:out  (no value)\n", ""},
        {"echo.tsp --set picture=@frames/frame_0001.png --get Picture:out --out pictures", 0,
         "Picture:out  ColorImage 320x240 -> pictures/Picture-out-0000.png\n", ""},
        // A sequence: one run per frame, the sinks of a process from that one run.
        {"echo.tsp --frames picture=frames --set value=true --get Picture:out --get Echo:out", 0,
         "0000  Picture:out  ColorImage 320x240 -> tessarity-out/Picture-out-0000.png\n"
         "0000  Echo:out     True\n"
         "0001  Picture:out  ColorImage 320x240 -> tessarity-out/Picture-out-0001.png\n"
         "0001  Echo:out     True\n"
         "0002  Picture:out  ColorImage 320x240 -> tessarity-out/Picture-out-0002.png\n"
         "0002  Echo:out     True\n",
         "process  runs  mean ms   p95 ms  frames/s\nPicture     3 "},
        // A process of 1 Hz computes the first of frames 1/30 s apart and keeps its result.
        {"slow.tsp --frames value=frames --threads 0", 0,
         "0002  Slow:out  ColorImage 320x240 -> tessarity-out/Slow-out-0002.png\n",
         "note: process 'Slow' runs at 1 Hz: of frames 1/30 s apart it computes one in 30"},
        {"slow.tsp --frames value=frames", 0, "", "\nSlow        1 "},
        {noDot + TESSARITY_RUN + " --help", 0, "Usage: tessarity-run PROGRAM.tsp [options]\n", ""},
        {"echo.tsp --filters", 0, "\nIdentity  (in) -> (out)\n", ""},
        {noDot + TESSARITY_RUN + " --describe Identity --dump Identity:0 --out o", 0,
         "Identity\n  * no description *\n  inputs\n    in\n  outputs\n    out\n"
         "  picture: install Graphviz ('dot') to draw one\n"
         "wrote o/Identity.dot (install Graphviz's 'dot' for PNG and SVG)\n", ""},
        {"missing.tsp", 1, "", "tessarity-run: cannot read 'missing.tsp': No such file or directory\n"},
        {"empty", 1, "", "tessarity-run: cannot read 'empty': a directory\n"},
        {"broken.tsp", 1, "",
         "NoSuchFilter\" is not present in the filter library.\n"
         "tessarity-run: 'broken.tsp' did not load: the log lines above say why\n"},
        {"broken.tsp --verbosity 0", 1, "",
         "tessarity-run: 'broken.tsp' did not load: run with --verbosity 2 or more to see why\n"},
        {"echo.tsp --get Nope:out", 1, "",
         "tessarity-run: --get Nope:out: no process 'Nope' (processes: Echo, Picture)\n"},
        {"echo.tsp --get Echo:nope", 1, "",
         "tessarity-run: --get Echo:nope: process 'Echo' has no sink 'nope' (sinks: out)\n"},
        {"echo.tsp --set lens=1", 1, "",
         "tessarity-run: --set lens: no source 'lens' (sources: picture, value)\n"},
        {"echo.tsp --set picture=@nowhere.png", 1, "",
         "tessarity-run: cannot read 'nowhere.png': No such file or directory\n"},
        {"echo.tsp --frames picture=empty", 1, "",
         "tessarity-run: no image files in 'empty' (.png, .jpg, .jpeg, .pgm, .ppm)\n"},
        {"--describe identity", 1, "",
         "tessarity-run: --describe identity: no filter 'identity'; did you mean 'Identity'? "
         "(--filters lists them)\n"},
        {"--dump Nope:2", 1, "", "tessarity-run: --dump Nope: no filter 'Nope' (--filters lists them)\n"},
        {"echo.tsp --bogus", 2, "", "tessarity-run: unknown option '--bogus' (see --help)\n"},
        {"", 2, "", "tessarity-run: no program given: tessarity-run PROGRAM.tsp [options] (see --help)\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Result result = c.arguments.rfind("env ", 0) == 0 ? run(dir, c.arguments) : tool(c.arguments);
        EXPECT_EQ(result.status, c.status) << result.err;
        EXPECT_NE(result.out.find(c.out), std::string::npos) << result.out;
        if (c.status != 0) {
            EXPECT_EQ(result.out, "");
        }
        EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
    }
    // The picture written is the frame read, and the dump is Graphviz text.
    const auto in = TessarityRun::readImage((dir / "frames/frame_0002.png").string(), {});
    const auto out = TessarityRun::readImage((dir / "tessarity-out/Picture-out-0002.png").string(), {});
    EXPECT_EQ(cv::norm(static_cast<Tessarity::Type::ColorImage*>(*in)->mat,
                       static_cast<Tessarity::Type::ColorImage*>(*out)->mat, cv::NORM_INF),
              0.0);
    EXPECT_EQ(slurp(dir / "o/Identity.dot").rfind("digraph Identity{\n", 0), 0u);
}

// The frames carry shapes that one threshold isolates, and the boxes the generator prints
// are those of the shapes found; the same seed gives the same files, PNG or PPM.
TEST_F(RunTool, GeneratedFramesHoldTheBoxesTheyAnnounce) {
    const Result first = frames("a --count 4 --seed 7");
    ASSERT_EQ(first.status, 0) << first.err;
    ASSERT_EQ(frames("b --count 4 --seed 7").out, first.out);
    const Result ppm = frames("c --count 4 --seed 7 --ppm");
    ASSERT_EQ(std::regex_replace(ppm.out, std::regex("\\.ppm "), ".png "), first.out);
    std::map<std::string, std::multiset<std::string>> announced;
    std::istringstream lines(first.out);
    for (std::string file, shape, box; lines >> file >> shape && std::getline(lines, box);)
        announced[file].insert(box.substr(1));
    ASSERT_EQ(announced.size(), 4u);
    for (const auto& frame : announced) {
        SCOPED_TRACE(frame.first);
        EXPECT_EQ(slurp(dir / "a" / frame.first), slurp(dir / "b" / frame.first));
        const auto read = TessarityRun::readImage((dir / "a" / frame.first).string(), {});
        const auto same = TessarityRun::readImage(
            (dir / "c" / frame.first).replace_extension(".ppm").string(), {});
        EXPECT_EQ(cv::norm(static_cast<Tessarity::Type::ColorImage*>(*read)->mat,
                           static_cast<Tessarity::Type::ColorImage*>(*same)->mat, cv::NORM_INF),
                  0.0);
        cv::Mat wide, sum, labels, stats, centroids;
        static_cast<Tessarity::Type::ColorImage*>(*read)->mat.convertTo(wide, CV_32FC3);
        cv::transform(wide, sum, cv::Matx13f(1, 1, 1));
        const int count = cv::connectedComponentsWithStats(sum > 3 * 150, labels, stats, centroids);
        std::multiset<std::string> found;
        for (int label = 1; label < count; ++label) {
            const int* box = stats.ptr<int>(label);  // left, top, width, height
            found.insert(std::to_string(box[0]) + " " + std::to_string(box[1]) + " " +
                         std::to_string(box[0] + box[2] - 1) + " " + std::to_string(box[1] + box[3] - 1));
        }
        EXPECT_EQ(found, frame.second);
    }
}

// The demo's pipeline over the generated frames: in each frame the boxes of the shapes, in the
// order of their topmost rows, each a pixel wider on every side for the dilation; one run a frame.
TEST_F(RunTool, BlobsFindTheGeneratedShapes) {
    const Result generated = frames("frames");
    ASSERT_EQ(generated.status, 0) << generated.err;
    std::map<std::string, std::string> boxes;  // by frame number
    std::istringstream lines(generated.out);
    int x0, y0, x1, y1;
    for (std::string file, shape; lines >> file >> shape >> x0 >> y0 >> x1 >> y1;) {
        std::string& frame = boxes[file.substr(6, 4)];
        frame += (frame.empty() ? "" : ";") + std::string("{Start=[") + std::to_string(x0 - 1) +
                 "," + std::to_string(y0 - 1) + "] End=[" + std::to_string(x1 + 1) + "," +
                 std::to_string(y1 + 1) + "]}";
    }
    ASSERT_EQ(boxes.size(), 12u);
    std::string expected;
    for (const auto& frame : boxes)
        expected += frame.first + "  Blobs:boxes  {" + frame.second + "}\n";

    const Result found = tool(std::string(TESSARITY_EXAMPLES_DIR) +
                              "/blobs.tsp --frames camera=frames --get Blobs:boxes --threads 0");
    ASSERT_EQ(found.status, 0) << found.err;
    EXPECT_EQ(found.out, expected);
    EXPECT_NE(found.err.find("\nBlobs      12 "), std::string::npos) << found.err;
}
