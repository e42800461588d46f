// Image files of tessarity-run: each file form read into the right image class with its
// samples in place, PNG written and read back, directories listed in name order, and the
// line that each unusable file gets.
#include <filesystem>
#include <fstream>
#include <functional>

#include <gtest/gtest.h>
#include <stb_image_write.h>

#include "failure.h"
#include "image_files.h"

using namespace TessarityRun;
using namespace Tessarity;
namespace fs = std::filesystem;

namespace {

// A fresh directory per test.
fs::path scratch() {
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    const fs::path path = fs::path(::testing::TempDir()) /
                          (std::string("image_files_") + test->name());
    fs::remove_all(path);
    fs::create_directories(path);
    return path;
}

void writeBytes(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// The samples of the value's image, row after row.
std::vector<int> samples(const Data& value) {
    cv::Mat mat;
    if (Type::ColorImage* colour = value) mat = colour->mat.clone();
    if (Type::GrayscaleImage* grey = value) mat = grey->mat.clone();
    return std::vector<int>(mat.data, mat.data + mat.total() * mat.elemSize());
}

std::string failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "no failure";
}

}  // namespace

TEST(RunImageFiles, EachFormGivesItsClassAndSamples) {
    const fs::path dir = scratch();
    // Two pixels each; what a colour file holds first is red, and so is a ColorImage's.
    using namespace std::string_literals;
    writeBytes(dir / "grey.pgm", "P5 2 1 255\n\x10\xf0"s);
    writeBytes(dir / "wide.pgm", "P5\n# 16 bits\n2 1\n65535\n\xab\xcd\x01\x02"s);
    writeBytes(dir / "colour.ppm", "P6 2 1 255\n\xff\x00\x00\x01\x02\x03"s);
    writeBytes(dir / "dim.pgm", "P5 2 1 15\n\x0f\x05"s);
    const unsigned char greyAlpha[] = {7, 255, 9, 0};
    const unsigned char rgba[] = {1, 2, 3, 255, 4, 5, 6, 0};
    const unsigned char rgb[] = {250, 0, 5, 6, 7, 8};
    ASSERT_TRUE(stbi_write_png((dir / "grey_alpha.png").c_str(), 2, 1, 2, greyAlpha, 4));
    ASSERT_TRUE(stbi_write_png((dir / "rgba.png").c_str(), 2, 1, 4, rgba, 8));
    ASSERT_TRUE(stbi_write_png((dir / "rgb.png").c_str(), 2, 1, 3, rgb, 6));
    const struct {
        const char* file;
        const char* type;
        std::vector<int> samples;
    } cases[] = {
        {"grey.pgm", "GrayscaleImage", {0x10, 0xf0}},
        {"wide.pgm", "GrayscaleImage", {0xab, 0x01}},  // scaled from 16 bits
        {"dim.pgm", "GrayscaleImage", {255, 85}},      // scaled from 0..15
        {"colour.ppm", "ColorImage", {255, 0, 0, 1, 2, 3}},
        {"grey_alpha.png", "GrayscaleImage", {7, 9}},  // alpha dropped, not blended
        {"rgba.png", "ColorImage", {1, 2, 3, 4, 5, 6}},
        {"rgb.png", "ColorImage", {250, 0, 5, 6, 7, 8}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const boost::shared_ptr<Data> value = readImage((dir / c.file).string(), Type::Time(42));
        EXPECT_EQ(Data::getTypeName(value->getType()), c.type);
        EXPECT_EQ(samples(*value), c.samples);
        EXPECT_EQ(value->getTimestamp(), Type::Time(42));
    }
}

TEST(RunImageFiles, PicturesOfImageValuesRoundTripThroughPng) {
    const fs::path dir = scratch();
    cv::Mat grey(3, 4, CV_8UC1);
    cv::randu(grey, 0, 256);
    cv::Mat colour(3, 4, CV_8UC3);
    cv::randu(colour, 0, 256);
    auto colourImage = boost::make_shared<Type::ColorImage>(colour);
    cv::Mat greyPicture;
    cv::merge(std::vector<cv::Mat>{grey, grey, grey}, greyPicture);
    const struct {
        const char* name;
        Data value;
        cv::Mat expected;  // empty: no picture
    } cases[] = {
        {"colour", Data(colourImage), colour},
        // A region of a larger image: rows are further apart than their width.
        {"cut", Data(boost::make_shared<Type::ColorImage>(colour(cv::Rect(1, 1, 2, 2)))),
         colour(cv::Rect(1, 1, 2, 2))},
        {"grey", Data(boost::make_shared<Type::GrayscaleImage>(grey)), greyPicture},
        {"binary", Data(boost::make_shared<Type::BinaryImage>(cv::Mat(2, 2, CV_8UC1, cv::Scalar(1)))),
         cv::Mat(2, 2, CV_8UC3, cv::Scalar::all(255))},
        {"matrix", Data(boost::make_shared<Type::MatrixImage>(2, 2)), cv::Mat()},
        {"number", Data(3), cv::Mat()},
        {"empty", Data(boost::shared_ptr<Type::ColorImage>()), cv::Mat()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const boost::shared_ptr<Type::ColorImage> picture = pictureOf(c.value);
        ASSERT_EQ(bool(picture), !c.expected.empty());
        if (!picture) continue;
        const std::string path = (dir / (std::string(c.name) + ".png")).string();
        writePng(path, *picture);
        const boost::shared_ptr<Data> read = readImage(path, Type::Time(1));
        Type::ColorImage* back = *read;
        ASSERT_TRUE(back);
        EXPECT_EQ(cv::norm(back->mat, c.expected, cv::NORM_INF), 0.0);
    }
    EXPECT_EQ(pictureOf(Data(colourImage)), colourImage);  // a colour image is its own picture
}

TEST(RunImageFiles, DirectoriesListTheirImagesInNameOrder) {
    const fs::path dir = scratch();
    for (const char* name : {"frame10.png", "frame2.png", "frame1.PNG", "b.jpeg", "a.pgm",
                             "c.ppm", ".hidden.png", "notes.txt", "png"})
        writeBytes(dir / name, "");
    fs::create_directory(dir / "folder.png");
    std::vector<std::string> names;
    for (const std::string& path : listImageFiles(dir.string()))
        names.push_back(fs::path(path).filename().string());
    EXPECT_EQ(names, (std::vector<std::string>{"a.pgm", "b.jpeg", "c.ppm", "frame1.PNG",
                                               "frame2.png", "frame10.png"}));
    // Runs of digits compare by value; equal values fall back to the plain order.
    EXPECT_TRUE(nameOrder("x9y", "x10a"));
    EXPECT_TRUE(nameOrder("a01", "a1"));
}

TEST(RunImageFiles, UnusableFilesSayWhatIsWrong) {
    const fs::path dir = scratch();
    const std::string d = dir.string();
    writeBytes(dir / "text.png", "not a picture");
    writeBytes(dir / "short.ppm", "P6 2 2 255\n\x01\x02\x03");
    writeBytes(dir / "odd.pgm", "P5 2 x 255\n\x01\x02");
    fs::create_directory(dir / "empty");
    writeBytes(dir / "empty" / "notes.txt", "");
    const Type::ColorImage image(1, 1);
    const struct {
        std::function<void()> action;
        std::string message;
    } cases[] = {
        {[&] { readImage(d + "/missing.png", Type::Time(1)); },
         "cannot read '" + d + "/missing.png': No such file or directory"},
        {[&] { readImage(d + "/empty", Type::Time(1)); }, "cannot read '" + d + "/empty': a directory"},
        {[&] { readImage(d + "/text.png", Type::Time(1)); },
         "cannot read '" + d + "/text.png' as an image (PNG, JPEG, PGM or PPM): unknown image type"},
        {[&] { readImage(d + "/short.ppm", Type::Time(1)); },
         "cannot read '" + d + "/short.ppm': the file is cut short"},
        {[&] { readImage(d + "/odd.pgm", Type::Time(1)); },
         "cannot read '" + d + "/odd.pgm': its PGM or PPM header is malformed"},
        {[&] { checkReadable(d + "/missing.tsp"); },
         "cannot read '" + d + "/missing.tsp': No such file or directory"},
        {[&] { listImageFiles(d + "/nowhere"); },
         "cannot read the directory '" + d + "/nowhere': No such file or directory"},
        {[&] { listImageFiles(d + "/empty"); },
         "no image files in '" + d + "/empty' (.png, .jpg, .jpeg, .pgm, .ppm)"},
        {[&] { writePng(d + "/nowhere/a.png", image); }, "cannot write '" + d + "/nowhere/a.png'"},
        {[&] { writePng(d + "/none.png", Type::ColorImage(cv::Mat(0, 0, CV_8UC3))); },
         "cannot write '" + d + "/none.png': the image has no pixels"},
    };
    for (const auto& c : cases) EXPECT_EQ(failureOf(c.action), c.message);
}
