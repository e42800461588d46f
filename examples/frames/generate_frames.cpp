// examples/frames/generate_frames.cpp: a short camera sequence for trying pipelines.
//
//   generate_frames DIR [--count N] [--seed S] [--ppm]
//
// Writes DIR/frame_0000.png ... (N frames, 12 by default, of 320x240), or binary PPM files
// frame_0000.ppm ... with --ppm, which a few lines of any language can read: a still textured
// background, three bright shapes that cross it on straight paths, each in its own band so
// that they never touch, and fresh noise in every frame. The same seed gives the same files.
// Prints the bounding box of each shape in each frame, corners included:
//
//   frame_0000.png sun 26 36 54 64
//
// Noise included, every sample of the background stays at or below 136, and the mean of a
// shape pixel's three samples at or above 189 (the Luminance filter gives at most 116 and at
// least 180): one threshold between the two, 150 for instance, finds exactly the shapes.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include <opencv2/imgproc.hpp>

#include "image_files.h"

namespace {

const int kWidth = 320, kHeight = 240;
const int kNoise = 16;  // the largest deviation of a sample; the Gaussian's tails are cut

struct Shape {
    const char* name;
    bool disc;             // a disc of `size` radius, or a rectangle of size x height
    int size, height;
    cv::Point from, to;    // the centre in the first and in the last frame
    cv::Scalar colour;     // red, green, blue, as the library's colour images hold them
};

// The bands are y 36-64, 108-131 and 152-218.
const Shape kShapes[] = {
    {"sun", true, 14, 0, {40, 50}, {280, 50}, {255, 240, 120}},
    {"card", false, 36, 24, {260, 120}, {40, 120}, {240, 250, 255}},
    {"ball", true, 18, 0, {60, 170}, {200, 200}, {255, 215, 205}},
};

// Blotches of 16 pixels and grain of 4, each sample within 40..120.
cv::Mat background(cv::RNG& rng) {
    cv::Mat coarse(kHeight / 16, kWidth / 16, CV_8UC3), fine(kHeight / 4, kWidth / 4, CV_8UC3);
    rng.fill(coarse, cv::RNG::UNIFORM, 40, 101);
    rng.fill(fine, cv::RNG::UNIFORM, 0, 21);
    cv::Mat blotches, grain;
    cv::resize(coarse, blotches, cv::Size(kWidth, kHeight), 0, 0, cv::INTER_LINEAR);
    cv::resize(fine, grain, cv::Size(kWidth, kHeight), 0, 0, cv::INTER_NEAREST);
    return blotches + grain;
}

void draw(cv::Mat& image, const Shape& shape, cv::Point centre, const cv::Scalar& colour) {
    if (shape.disc) {
        cv::circle(image, centre, shape.size, colour, cv::FILLED, cv::LINE_8);
    } else {
        const cv::Point corner(centre.x - shape.size / 2, centre.y - shape.height / 2);
        cv::rectangle(image, cv::Rect(corner, cv::Size(shape.size, shape.height)), colour,
                      cv::FILLED, cv::LINE_8);
    }
}

int usage(const std::string& message) {
    std::cerr << "generate_frames: " << message << "\n"
              << "usage: generate_frames DIR [--count N] [--seed S] [--ppm]\n";
    return 2;
}

// A binary PPM: a short text header, then the red, green, blue bytes row by row.
void writePpm(const std::string& path, const cv::Mat& image) {
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << image.cols << " " << image.rows << "\n255\n";
    for (int row = 0; row < image.rows; ++row)
        file.write(image.ptr<char>(row), static_cast<std::streamsize>(image.cols) * 3);
    if (!file) throw std::runtime_error("cannot write '" + path + "'");
}

}  // namespace

int main(int argc, char** argv) {
    std::string directory;
    int count = 12;
    int seed = 1;
    bool ppm = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if ((argument == "--count" || argument == "--seed") && i + 1 < argc) {
            const long value = std::strtol(argv[++i], nullptr, 10);
            if (value < 1 || value > 10000) return usage(argument + " needs 1 to 10000");
            (argument == "--count" ? count : seed) = static_cast<int>(value);
        } else if (argument == "--ppm") {
            ppm = true;
        } else if (directory.empty() && argument[0] != '-') {
            directory = argument;
        } else {
            return usage("unexpected '" + argument + "'");
        }
    }
    if (directory.empty()) return usage("no directory given");
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) return usage("cannot make '" + directory + "': " + error.message());

    cv::RNG rng(seed);
    const cv::Mat scene = background(rng);
    for (int frame = 0; frame < count; ++frame) {
        const double along = count > 1 ? double(frame) / (count - 1) : 0.0;
        cv::Mat image = scene.clone();
        char name[32];
        std::snprintf(name, sizeof name, "frame_%04d.%s", frame, ppm ? "ppm" : "png");
        for (const Shape& shape : kShapes) {
            const cv::Point centre(int(std::lround(shape.from.x + (shape.to.x - shape.from.x) * along)),
                                   int(std::lround(shape.from.y + (shape.to.y - shape.from.y) * along)));
            draw(image, shape, centre, shape.colour);
            // The box is measured on the shape as drawn, so it is exact to the pixel.
            cv::Mat mask = cv::Mat::zeros(kHeight, kWidth, CV_8UC1);
            draw(mask, shape, centre, cv::Scalar(255));
            const cv::Rect box = cv::boundingRect(mask);
            std::cout << name << " " << shape.name << " " << box.x << " " << box.y << " "
                      << box.x + box.width - 1 << " " << box.y + box.height - 1 << "\n";
        }
        cv::Mat noise(kHeight, kWidth, CV_16SC3);
        rng.fill(noise, cv::RNG::NORMAL, 0, 6);
        noise = cv::max(cv::min(noise, kNoise), -kNoise);
        cv::add(image, noise, image, cv::noArray(), CV_8UC3);
        try {
            const std::string path = (std::filesystem::path(directory) / name).string();
            if (ppm)
                writePpm(path, image);
            else
                TessarityRun::writePng(path, Tessarity::Type::ColorImage(image));
        } catch (const std::exception& failure) {
            std::cerr << "generate_frames: " << failure.what() << "\n";
            return 1;
        }
    }
}
