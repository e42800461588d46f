// KNN classification: the worked cases of both paths, data bases that are odd or broken, the
// blocked distances against the plain definition, and createClassificationFilter.
#include <algorithm>
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
        std::string text = "<data><properties><type>" + type + "</type><size>" + size +
                           "</size><count>" + count + "</count></properties><descriptors>";
        for (const std::string& d : descriptors) text += "<d>" + d + "</d>";
        const fs::path path = root / "orvik/vision/tsp" / name;
        std::ofstream(path.string()) << text << "</descriptors></data>";
        return path.string();
    }
    fs::path root;
};

Ptr features(const std::vector<float>& values) {
    Values elements;
    for (float v : values) elements.push_back(box(v));
    return box(elements);
}

// The answer to `values` with "k" (unbound if null): the label, or "-" for none.
std::string classify(Filter& knn, const std::vector<float>& values, const Ptr& k = Ptr()) {
    const Values out = knn.applyFilter({features(values), k}, "p", "r", 0);
    return out.empty() ? "-" : out[0]->toString();
}

}  // namespace

TEST(KNNClassification, NearestNeighbourVoteAndOddDataBases) {
    DataBases bases;
    int files = 0;
    const auto base = [&](const char* type, const char* size, const char* count,
                          const std::vector<std::string>& descriptors) {
        return boost::make_shared<Filters::KNNClassification>(
            bases.write(std::to_string(++files) + ".xml", type, size, count, descriptors));
    };
    // (1, 0) label 5, (0, 2) label 3, (-1, 0) label 9, (10, 10) label 3.
    const auto four = base("knn", "2", "4", {"5 1 0", " 3\n0 2 ", "9 -1 0", "3 10 10"});
    EXPECT_EQ(ports(*four), "KNNClassification in:Array k:Integer? | out");
    // Another type, or a negative size: an empty filter that answers an empty Array only.
    const auto other = base("svm", "x", "x", {"1 2"}), negative = base("knn", "-2", "1", {"4"});
    // Children past the count are not read; a count past the children reads those there are;
    // a number that does not parse reads 0, and so does the rest of its descriptor.
    const auto none = base("knn", "2", "0", {"4 1 1"}), one = base("knn", "1", "1", {"7 4"}),
               cut = base("knn", "2", "1", {"4 5 5", "6 1 1"}),
               short_ = base("knn", "2", "9", {"4 5 5"}),
               broken = base("knn", "3", "2", {"4 1 x 3", "6 1 0 3"});
    const auto k = [](int value) { return box(value); };
    // From (0.9, 0.4) the distances to `four` are 0.17, 3.37, 3.77 and 177.77.
    const std::vector<float> q = {0.9f, 0.4f};
    const struct {
        boost::shared_ptr<Filters::KNNClassification> knn;
        std::vector<float> query;
        Ptr k;
        const char* label;
    } cases[] = {
        // clang-format off
        {four, q, Ptr(), "5"}, {four, q, k(1), "5"}, {four, q, k(0), "5"}, {four, q, k(-5), "5"},
        {four, q, box(2.0f), "5"},
        // A tie between labels goes to the smaller, though 5 is nearer.
        {four, q, k(2), "3"}, {four, q, k(3), "3"}, {four, q, k(4), "3"},
        // Unfilled places vote for 0, and win ties too.
        {four, q, k(5), "3"}, {four, q, k(6), "0"}, {one, {4}, k(3), "0"}, {one, {4}, k(1), "7"},
        {four, {0, 0}, Ptr(), "5"},  // equal distances: the earlier descriptor
        {four, {0, 0, 0}, Ptr(), "-"}, {four, {}, Ptr(), "-"},
        {other, {}, Ptr(), "0"}, {other, {}, k(3), "0"}, {other, {1}, Ptr(), "-"},
        {negative, {}, Ptr(), "0"}, {none, {1, 1}, Ptr(), "0"}, {none, {1, 1}, k(3), "0"},
        {cut, {1, 1}, Ptr(), "4"}, {short_, {0, 0}, k(3), "0"}, {broken, {1, 0, 0}, Ptr(), "4"},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(classify(*c.knn, c.query, c.k), c.label) << &c - cases;
    // Integers convert; an input that is no Array reads as an empty one.
    EXPECT_EQ(text(four->applyFilter({box(Values{k(-1), k(0)}), Ptr()}, "p", "r", 0)) +
                  text(other->applyFilter({k(1)}, "p", "r", 0)) +
                  text(four->applyFilter({Ptr()}, "p", "r", 0)),
              "Integer 9Integer 0");

    const auto error = [&](const std::string& path) -> std::string {
        try {
            Filters::KNNClassification knn(path);
        } catch (const boost::property_tree::xml_parser_error& e) {
            return "xml: " + e.message();
        } catch (const boost::property_tree::ptree_error& e) {
            return e.what();
        }
        return "none";
    };
    const std::string bare = (bases.root / "bare.xml").string(), open = bare + ".open";
    std::ofstream(bare) << "<data><properties><type>knn</type></properties></data>";
    std::ofstream(open) << "<data><properties>";
    EXPECT_EQ(error((bases.root / "missing.xml").string()), "xml: cannot open file");
    EXPECT_EQ(error(open).substr(0, 5), "xml: ");
    EXPECT_EQ(error(bare), "No such node (data.properties.size)");
    EXPECT_THROW(base("knn", "two", "1", {}), boost::property_tree::ptree_bad_data);
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
    Filters::KNNClassification knn(bases.write("random.xml", "knn", "13", "37", lines));
    for (int query = 0; query < 20; ++query) {
        std::vector<float> q(size);
        for (float& v : q) v = rng.uniform(-16, 16) / 8.0f;
        for (int k : {1, 2, 3, 5, 16, 37, 50}) {
            // k slots of (distance, label); each descriptor replaces the first of the largest if
            // it is nearer.
            std::vector<std::pair<float, int>> slots(k, {3.4028235e38f, 0});
            for (int i = 0; i < count; ++i) {
                float distance = 0;
                for (int j = 0; j < size; ++j)
                    distance += (q[j] - descriptors[i][j]) * (q[j] - descriptors[i][j]);
                auto largest = std::max_element(slots.begin(), slots.end(),
                                                [](auto& a, auto& b) { return a.first < b.first; });
                if (largest->first > distance) *largest = {distance, labels[i]};
            }
            std::map<int, unsigned int> votes;
            for (const auto& slot : slots) ++votes[slot.second];
            auto want = votes.begin();
            for (auto vote = votes.begin(); vote != votes.end(); ++vote)
                if (vote->second > want->second) want = vote;
            EXPECT_EQ(classify(knn, q, box(k)), std::to_string(want->first)) << query << " " << k;
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
