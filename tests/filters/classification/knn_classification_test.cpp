// KNN classification: the worked cases of both paths, data bases that are odd or broken, the
// blocked distances against the plain definition, and createClassificationFilter.
#include <fstream>
#include <map>

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <opencv2/core.hpp>

#include <kelvo/path.h>

#include "filters/classification/knn_classification.h"
#include "kits/engine_kit.h"
#include "kits/filter_kit.h"

using namespace filterkit;
namespace fs = boost::filesystem;

namespace {

// A data root in a fresh temporary folder, removed with the object.
struct DataBases {
    DataBases() : root(fs::temp_directory_path() / fs::unique_path()) {
        fs::create_directories(root / "orvik/vision/tsp");
    }
    ~DataBases() { fs::remove_all(root); }
    // Writes the data base `name`, returns its path.
    std::string write(const std::string& name, const std::string& type, const std::string& size,
                      const std::string& count, const std::vector<std::string>& descriptors) {
        const fs::path path = root / "orvik/vision/tsp" / name;
        std::ofstream file(path.string());
        file << "<data><properties><type>" << type << "</type><size>" << size << "</size><count>"
             << count << "</count></properties><descriptors>";
        for (const std::string& d : descriptors) file << "<d>" << d << "</d>";
        file << "</descriptors></data>";
        return path.string();
    }
    fs::path root;
};

Ptr features(const std::vector<float>& values) {
    Values elements;
    for (float v : values) elements.push_back(boost::make_shared<Data>(v));
    return boost::make_shared<Data>(elements);
}

// The answer for `values` with "k" given as `k` (unbound if null), or "none".
std::string classify(Bench<Filters::KNNClassification>& knn, const std::vector<float>& values,
                     const Ptr& k = Ptr()) {
    const Values out = knn({features(values), k});
    return out.empty() ? "none" : text(out[0]);
}

}  // namespace

TEST(KNNClassification, NearestNeighbourAndVote) {
    DataBases bases;
    // (1, 0) label 5, (0, 2) label 3, (-1, 0) label 9, (10, 10) label 3.
    Bench<Filters::KNNClassification> knn(
        bases.write("four.xml", "knn", "2", "4", {"5 1 0", " 3\n0 2 ", "9 -1 0", "3 10 10"}));
    EXPECT_EQ(ports(*knn.filter), "KNNClassification in:Array k:Integer? | out");
    const auto k = [](int value) { return boost::make_shared<Data>(value); };
    // From (0.9, 0.4) the distances are 0.17, 3.37, 3.77 and 177.77.
    const std::vector<float> near5 = {0.9f, 0.4f};
    EXPECT_EQ(classify(knn, near5) + classify(knn, near5, k(0)) + classify(knn, near5, k(-5)) +
                  classify(knn, near5, boost::make_shared<Data>(2.0f)),
              "Integer 5Integer 5Integer 5Integer 5");
    // A tie between labels goes to the smaller; unfilled places vote for 0, and win a tie.
    EXPECT_EQ(classify(knn, near5, k(2)) + classify(knn, near5, k(3)) + classify(knn, near5, k(5)) +
                  classify(knn, near5, k(6)),
              "Integer 3Integer 3Integer 3Integer 0");
    // Equal distances: the earlier descriptor.
    EXPECT_EQ(classify(knn, {0, 0}), "Integer 5");
    EXPECT_EQ(classify(knn, {0, 0, 0}) + classify(knn, {}), "nonenone");
    const Values integers{boost::make_shared<Data>(-1), boost::make_shared<Data>(0)};
    EXPECT_EQ(text(knn({boost::make_shared<Data>(integers), Ptr()})), "Integer 9");
    EXPECT_EQ(knn({}).size() + knn({Ptr()}).size(), 0u);

    Bench<Filters::KNNClassification> one(bases.write("one.xml", "knn", "1", "1", {"7 4"}));
    EXPECT_EQ(classify(one, {4}, k(1)) + classify(one, {4}, k(3)), "Integer 7Integer 0");
}

TEST(KNNClassification, OddDataBases) {
    DataBases bases;
    const auto k = boost::make_shared<Data>(3);
    // Another type: an empty filter that answers an empty Array only.
    Bench<Filters::KNNClassification> other(bases.write("other.xml", "svm", "x", "x", {"1 2"}));
    EXPECT_EQ(classify(other, {}) + classify(other, {}, k) + classify(other, {1}),
              "Integer 0Integer 0none");
    Bench<Filters::KNNClassification> empty(bases.write("empty.xml", "knn", "2", "0", {"4 1 1"}));
    EXPECT_EQ(classify(empty, {1, 1}) + classify(empty, {1, 1}, k), "Integer 0Integer 0");
    // Children past the count are not read; a count past the children reads those there are;
    // a number that does not parse reads 0, and so does the rest of its descriptor.
    Bench<Filters::KNNClassification> cut(
        bases.write("cut.xml", "knn", "2", "1", {"4 5 5", "6 1 1"}));
    Bench<Filters::KNNClassification> short_(bases.write("short.xml", "knn", "2", "9", {"4 5 5"}));
    Bench<Filters::KNNClassification> broken(
        bases.write("broken.xml", "knn", "3", "2", {"4 1 x 3", "6 1 0 3"}));
    EXPECT_EQ(classify(cut, {1, 1}) + classify(short_, {0, 0}, k) + classify(broken, {1, 0, 0}),
              "Integer 4Integer 0Integer 4");
    Bench<Filters::KNNClassification> negative(
        bases.write("negative.xml", "knn", "-2", "1", {"4"}));
    EXPECT_EQ(classify(negative, {}), "Integer 0");

    const auto error = [&](const std::string& path) -> std::string {
        try {
            Filters::KNNClassification knn(path);
        } catch (const boost::property_tree::xml_parser_error& e) {
            return std::string("xml: ") + e.message();
        } catch (const boost::property_tree::ptree_bad_path& e) {
            return std::string("path: ") + e.what();
        } catch (const boost::property_tree::ptree_bad_data& e) {
            return std::string("data: ") + e.what();
        }
        return "none";
    };
    const std::string bare = (bases.root / "bare.xml").string(), open = bare + ".open";
    std::ofstream(bare) << "<data><properties><type>knn</type></properties></data>";
    std::ofstream(open) << "<data><properties>";
    EXPECT_EQ(error((bases.root / "missing.xml").string()), "xml: cannot open file");
    EXPECT_EQ(error(open).substr(0, 5), "xml: ");
    EXPECT_EQ(error(bare), "path: No such node (data.properties.size)");
    EXPECT_EQ(error(bases.write("words.xml", "knn", "two", "1", {"1 2 3"})).substr(0, 24),
              "data: conversion of data");
}

TEST(KNNClassification, BlockedDistancesMatchThePlainDefinition) {
    DataBases bases;
    cv::RNG rng(3);
    const int size = 13, count = 37;
    // Eighths are exact in single precision and in the file, and make ties frequent.
    std::vector<std::vector<float>> descriptors(count, std::vector<float>(size));
    std::vector<int> labels(count);
    std::vector<std::string> lines;
    for (int i = 0; i < count; ++i) {
        labels[i] = rng.uniform(0, 5);
        std::string line = std::to_string(labels[i]);
        for (float& v : descriptors[i])
            line += " " + std::to_string(v = rng.uniform(-16, 16) / 8.0f);
        lines.push_back(line);
    }
    Bench<Filters::KNNClassification> knn(bases.write("random.xml", "knn", "13", "37", lines));
    for (int query = 0; query < 20; ++query) {
        std::vector<float> q(size);
        for (float& v : q) v = rng.uniform(-16, 16) / 8.0f;
        for (int k : {1, 2, 3, 5, 16, 37, 50}) {
            // The Part's walk: k slots, each descriptor into the first largest if nearer.
            std::vector<float> slots(k, 3.4028235e38f);
            std::vector<int> slotLabels(k, 0);
            for (int i = 0; i < count; ++i) {
                float distance = 0;
                for (int j = 0; j < size; ++j)
                    distance += (q[j] - descriptors[i][j]) * (q[j] - descriptors[i][j]);
                int largest = 0;
                for (int s = 0; s < k; ++s) largest = slots[s] > slots[largest] ? s : largest;
                if (slots[largest] > distance)
                    slots[largest] = distance, slotLabels[largest] = labels[i];
            }
            std::map<int, unsigned int> votes;
            for (int label : slotLabels) ++votes[label];
            int want = 0;
            unsigned int best = 0;
            for (const auto& vote : votes)
                if (vote.second > best) best = vote.second, want = vote.first;
            EXPECT_EQ(classify(knn, q, boost::make_shared<Data>(k)),
                      "Integer " + std::to_string(want))
                << "query " << query << " k " << k;
        }
    }
}

TEST(KNNClassification, CreatedThroughTheFacade) {
    using namespace enginekit;
    DataBases bases;
    bases.write("four.xml", "knn", "2", "2", {"5 1 0", "3 0 2"});
    bases.write("bad.xml", "knn", "two", "2", {});
    kelvo::path::addDataPath(bases.root.string());
    LogCapture log;
    Engine engine(0);
    EXPECT_FALSE(engine.isFilter("KNNClassification"));
    ASSERT_TRUE(engine.createClassificationFilter("shapes", ::Tessarity::KNN, "four.xml"));
    EXPECT_EQ(engine.getFilterInputs("shapes"), (Names{"[Array] in", "optional [Integer] k"}));
    EXPECT_FALSE(engine.isFilter("KNNClassification"));
    EXPECT_FALSE(
        engine.createClassificationFilter("shapes", ::Tessarity::KNN, "nowhere.xml") ||
        engine.createClassificationFilter("shapes", ::Tessarity::KNN, "four.xml") ||
        engine.createClassificationFilter("other", ::Tessarity::ClassificationType(1), "four.xml"));
    EXPECT_THROW(engine.createClassificationFilter("bad", ::Tessarity::KNN, "bad.xml"),
                 boost::property_tree::ptree_bad_data);
    EXPECT_FALSE(engine.isFilter("other") || engine.isFilter("bad"));
    const std::string call = "createClassificationFilter(\"shapes\", type, \"";
    EXPECT_EQ(messages(log, kelvo::log::Error),
              (Names{call + "nowhere.xml\"): File not found.",
                     call + "four.xml\"): A filter with the name \"shapes\" already exists.",
                     "createClassificationFilter(\"other\", type, \"four.xml\"): Invalid "
                     "classification type."}));

    ASSERT_TRUE(engine.createSource("features"));
    ASSERT_TRUE(create(engine, "classify", "shapes", {{"in", "features"}}, {{"out", "label"}}));
    engine.setData("features", features({0.2f, 1.5f}));
    EXPECT_EQ(enginekit::text(engine.getData("classify:label", at(1))), "3");
}
