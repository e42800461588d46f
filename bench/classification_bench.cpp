// KNN classification of one feature vector against a data base of 5000 descriptors of 400
// floats, beside cv::ml::KNearest's brute force on the same data with the same k: queries per
// second of each, their ratio, and how many answers of a fixed set of queries differ.
#include <chrono>
#include <cstdio>
#include <fstream>

#include <benchmark/benchmark.h>
#include <boost/filesystem.hpp>
#include <boost/make_shared.hpp>
#include <opencv2/core.hpp>
#include <opencv2/ml.hpp>

#include "filters/classification/knn_classification.h"

namespace {

using namespace Tessarity;
typedef boost::shared_ptr<Data> Ptr;
typedef std::chrono::steady_clock Clock;

const int kCount = 5000, kSize = 400, kQueries = 64, kClasses = 10;

// The data base in memory for OpenCV and as a file for the filter, both from the same floats,
// which the file spells with enough digits to read back exactly.
struct DataBase {
    DataBase()
        : samples(kCount, kSize, CV_32F),
          responses(kCount, 1, CV_32F),
          queries(kQueries, kSize, CV_32F) {
        cv::RNG rng(2024);
        rng.fill(samples, cv::RNG::UNIFORM, 0.0f, 1.0f);
        rng.fill(queries, cv::RNG::UNIFORM, 0.0f, 1.0f);
        const boost::filesystem::path path = boost::filesystem::temp_directory_path() /
                                             boost::filesystem::unique_path("knn-%%%%%%.xml");
        {
            std::ofstream file(path.string());
            file << "<data><properties><type>knn</type><size>" << kSize << "</size><count>"
                 << kCount << "</count></properties><descriptors>\n";
            char number[32];
            for (int i = 0; i < kCount; ++i) {
                const int label = rng.uniform(0, kClasses);
                responses.at<float>(i) = static_cast<float>(label);
                file << "<d>" << label;
                for (int j = 0; j < kSize; ++j) {
                    std::snprintf(number, sizeof number, " %.9g", samples.at<float>(i, j));
                    file << number;
                }
                file << "</d>\n";
            }
            file << "</descriptors></data>\n";
        }
        filter = boost::make_shared<Filters::KNNClassification>(path.string());
        boost::filesystem::remove(path);
        for (int q = 0; q < kQueries; ++q) {
            std::vector<Ptr> elements;
            for (int j = 0; j < kSize; ++j)
                elements.push_back(boost::make_shared<Data>(queries.at<float>(q, j)));
            arrays.push_back(boost::make_shared<Data>(elements));
        }
        knearest = cv::ml::KNearest::create();
        knearest->setAlgorithmType(cv::ml::KNearest::BRUTE_FORCE);
        knearest->setIsClassifier(true);
        knearest->train(samples, cv::ml::ROW_SAMPLE, responses);
    }

    cv::Mat samples, responses, queries;
    boost::shared_ptr<Filters::KNNClassification> filter;
    std::vector<Ptr> arrays;
    cv::Ptr<cv::ml::KNearest> knearest;
};

const DataBase& dataBase() {
    static const DataBase base;
    return base;
}

int ours(const DataBase& base, int query, const Ptr& k) {
    return *base.filter->applyFilter({base.arrays[query], k}, "p", "r", 0)[0];
}

int theirs(const DataBase& base, int query, int k) {
    cv::Mat results;
    return static_cast<int>(base.knearest->findNearest(base.queries.row(query), k, results));
}

template <typename Call>
double seconds(Call call) {
    const Clock::time_point start = Clock::now();
    call();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Both classify the same query by turns in each iteration, on one thread.
void KnnQuery(benchmark::State& state) {
    const DataBase& base = dataBase();
    const int k = static_cast<int>(state.range(0));
    const Ptr kValue = boost::make_shared<Data>(k);
    const int threads = cv::getNumThreads();
    cv::setNumThreads(1);
    int differences = 0;
    for (int q = 0; q < kQueries; ++q) differences += ours(base, q, kValue) != theirs(base, q, k);
    double oursSeconds = 0, theirsSeconds = 0;
    int query = 0;
    for (auto _ : state) {
        const double elapsed =
            seconds([&] { benchmark::DoNotOptimize(ours(base, query, kValue)); });
        oursSeconds += elapsed;
        theirsSeconds += seconds([&] { benchmark::DoNotOptimize(theirs(base, query, k)); });
        state.SetIterationTime(elapsed);
        query = (query + 1) % kQueries;
    }
    const double iterations = static_cast<double>(state.iterations());
    state.counters["queries_per_s"] = iterations / oursSeconds;
    state.counters["opencv_queries_per_s"] = iterations / theirsSeconds;
    state.counters["ratio"] = oursSeconds / theirsSeconds;
    state.counters["differing_answers"] = differences;
    cv::setNumThreads(threads);
}
BENCHMARK(KnnQuery)->Arg(1)->Arg(5)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
