// Filters over values as a whole: lambdas applied and curried, arrays grown, images blended
// over time.
#include <cmath>

#include <gtest/gtest.h>

#include <tessarity/types/lambda.h>

#include "filters/arithmetic/sub.h"
#include "filters/flow/duplicate.h"
#include "filters/functional/accum.h"
#include "filters/functional/append.h"
#include "filters/functional/apply.h"
#include "filters/functional/curry.h"
#include "kits/filter_kit.h"
#include "kits/log_capture.h"

using namespace filterkit;

namespace {

Ptr list(const Values& values) { return box(Data(values)); }
template <class F>
Ptr lambdaOf() {
    return box(
        Data(Type::Lambda::createLambda(boost::shared_ptr<Filter>(boost::make_shared<F>()))));
}
const Ptr none;

// The answers of one Accum key fed one-pixel gray images of `bytes` with `factor`, each
// followed by "|".
template <class C = Type::GrayscaleImage>
std::string feed(float factor, std::initializer_list<double> bytes) {
    Bench<Filters::Accum> accum;
    std::string out;
    for (double v : bytes) out += text(accum({image<C>(1, 1, {v}), box(factor)})) + "|";
    return out;
}

}  // namespace

TEST(FunctionalFilters, DeclaredPorts) {
    EXPECT_EQ(ports(Filters::Apply()), "Apply fun:Lambda param:Array | out");
    EXPECT_EQ(ports(Filters::Curry()), "Curry fun:Lambda param:Array | out");
    EXPECT_EQ(ports(Filters::Append()), "Append item array:Array? | out");
    EXPECT_EQ(ports(Filters::Accum()),
              "Accum in:ColorImage:GrayscaleImage:DepthImage factor:Float | out");
}

TEST(FunctionalFilters, ApplyCurryAndAppend) {
    Bench<Filters::Apply> apply;
    Bench<Filters::Curry> curry;
    Bench<Filters::Append> append;
    const Ptr sub = lambdaOf<Filters::Sub>();
    EXPECT_EQ(text(apply({sub, list({box(5), box(3)})})), "Integer 2");
    // Every output of the lambda comes back, though only the first reaches "out".
    EXPECT_EQ(text(apply({lambdaOf<Filters::Duplicate>(), list({box(4)})})),
              "Integer 4; Integer 4");
    // Currying binds the first free input of a clone; the lambda on "fun" keeps both free.
    const Values curried = curry({sub, list({box(10), box(99)})});
    EXPECT_EQ(text(apply({curried.at(0), list({box(4)})})), "Integer 6");
    EXPECT_EQ(text(apply({sub, list({box(4), box(1)})})), "Integer 3");
    const Ptr nullLambda = box(Data(boost::shared_ptr<Type::Lambda>()));
    EXPECT_EQ(text(apply({sub})) + text(apply({sub, box(1)})) + text(curry({box(1), list({})})) +
                  text(apply({nullLambda, list({})})) + text(curry({nullLambda, list({})})),
              "");

    // A new array each time, ending in the item; the elements are shared, not copied.
    const Ptr a = box(1), two = list({box(2), box(3)});
    const Values grown = append({a, two});
    EXPECT_EQ(text(grown) + " | " + text(two), "Array {2;3;1} | Array {2;3}");
    EXPECT_EQ(std::vector<Ptr>(*grown.at(0)).back(), a);
    EXPECT_EQ(text(append({a, none})) + text(append({a})) + text(append({})), "Array {1}Array {1}");
}

TEST(FunctionalFilters, AccumAbsorbsTheFirstFrameAndBlendsWithTruncatedWeights) {
    const std::string g = "GrayscaleImage ";
    EXPECT_EQ(feed(0.5f, {100, 200}), "null|" + g + "150|");
    // Weights 76 and 179 sum to 255: a constant picture drifts down.
    EXPECT_EQ(feed(0.3f, {200, 200, 200}), "null|" + g + "199|" + g + "198|");
    EXPECT_EQ(feed(1.0f, {10, 20, 30}), "null|" + g + "20|" + g + "30|");
    EXPECT_EQ(feed(0.0f, {10, 20, 30}), "null|" + g + "10|" + g + "10|");
    // Outside 0 to 1 the weights wrap as 32-bit unsigned numbers, the sum is cut to the sample.
    EXPECT_EQ(feed(2.0f, {100, 200}), "null|" + g + "44|");
    EXPECT_EQ(feed(-0.5f, {100, 200}), "null|" + g + "50|");
    EXPECT_EQ(feed<Type::DepthImage>(0.5f, {1000, 3000, 65535}),
              "null|DepthImage 2000|DepthImage 33767|");
    EXPECT_EQ(feed(std::nanf(""), {1, 2}), "||");
}

TEST(FunctionalFilters, AccumKeepsOneLiveImagePerKey) {
    LogCapture log;
    Bench<Filters::Accum> accum;
    const Ptr half = box(0.5f);
    const auto gray = [](double v) { return image<Type::GrayscaleImage>(2, 1, {v}); };
    EXPECT_EQ(text(accum({gray(100), half})), "null");
    const Values first = accum({gray(200), half});
    // The same value every time, its pixels changing under earlier holders.
    EXPECT_EQ(accum({gray(50), half}).at(0), first.at(0));
    EXPECT_EQ(text(first), "GrayscaleImage 100 100");
    // Each process and each request keeps its own.
    EXPECT_EQ(text(accum({gray(7), half}, "q")) + text(accum({gray(9), half}, "p", "r2")),
              "nullnull");
    // Another class leaves the accumulator as it is, metadata of the first image included.
    EXPECT_EQ(text(accum({image<Type::DepthImage>(2, 1, {9}), half})), "GrayscaleImage 100 100");
    const auto* kept = static_cast<Type::GrayscaleImage*>(*first.at(0));
    EXPECT_EQ(kept->colorSpace + " " + std::to_string(kept->timestamp.getTotalMicroseconds()),
              "rgb 5");
    EXPECT_TRUE(log.lines().empty());

    // Refusals: a size that cannot pair, a factor of another type and a wrong arity silently;
    // an input of no accepted class with the one line.
    EXPECT_EQ(text(accum({image<Type::GrayscaleImage>(3, 1, {1}), half})) +
                  text(accum({gray(1), box(0.5)})) + text(accum({gray(1)})) +
                  text(accum({box(1), half})) + text(accum({none, half})),
              "");
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[1].level, kelvo::log::Error);
    EXPECT_EQ(log.lines()[1].category + log.lines()[1].message,
              "tessarity.filter.accum [Invalid Input] -> Accum -> ...");
}

TEST(FunctionalFilters, AccumVectorBlendMatchesAPlainReference) {
    cv::RNG rng(3);
    for (const float factor : {0.5f, 0.3f, 0.999f, 0.0f, 1.0f}) {
        const unsigned in = unsigned(factor * 256.0f), kept = unsigned((1.0f - factor) * 256.0f);
        for (const int type : {CV_8UC1, CV_8UC3}) {
            cv::Mat a(3, 45, type), b(3, 45, type);
            rng.fill(a, cv::RNG::UNIFORM, 0, 256);
            rng.fill(b, cv::RNG::UNIFORM, 0, 256);
            const auto wrap = [type](const cv::Mat& m) {
                return type == CV_8UC1 ? box(Data(boost::make_shared<Type::GrayscaleImage>(m)))
                                       : box(Data(boost::make_shared<Type::ColorImage>(m)));
            };
            Bench<Filters::Accum> accum;
            accum({wrap(a), box(factor)});
            const cv::Mat out = matOf(accum({wrap(b), box(factor)}).at(0));
            int wrong = 0;
            for (int i = 0; i < int(a.total()) * a.channels(); ++i)
                wrong += out.data[i] != uchar((b.data[i] * in + a.data[i] * kept) >> 8);
            EXPECT_EQ(wrong, 0) << factor << " " << type;
        }
    }
}
