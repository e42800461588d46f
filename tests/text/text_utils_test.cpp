// The text helpers: the lexer of the program language and the parser of literal values.
// Their edges define what the language accepts, so each row pins one case byte by byte,
// odd ones included. Texts with zero bytes use the ""s literal.

#include <climits>
#include <cmath>
#include <limits>
#include <list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "text/text_utils.h"

using namespace Tessarity;
using namespace std::string_literals;

namespace {

typedef std::list<std::string> Items;
typedef std::pair<std::string, std::string> Halves;

// A row: an argument, the text, the expected result.
template <class Arg, class Out>
using Case = std::tuple<Arg, std::string, Out>;

// Names a row in a failure message, with its bytes escaped.
std::string show(const std::string& text) { return ::testing::PrintToString(text); }

// The literal forms a text takes: isBool, toBool, isInteger, isFloat, isString.
std::string forms(const std::string& t) {
    return {isBool(t) ? 'b' : '-', toBool(t) ? 't' : '-', isInteger(t) ? 'i' : '-',
            isFloat(t) ? 'f' : '-', isString(t) ? 's' : '-'};
}

}  // namespace

TEST(TextRemoveComments, CommentRunsToAndTakesTheFirstLineEnd) {
    const Case<char, std::string> rows[] = {
        {'#', "a # b\nc", "a c"},
        {'#', "a\n# only a comment\nb", "a\nb"},
        {'#', "a#1\n#2\nb", "ab"},
        {'#', "a # b", "a "},
        // A carriage return ends it too, and only the first line end goes.
        {'#', "a#b\r\nc", "a\nc"},
        // No other byte ends a comment, a second comment byte included.
        {'#', "a#\t\f\v\0b#c\nd"s, "ad"},
        // Literals are not honoured.
        {'#', "x = \"a#b\"\ny", "x = \"ay"},
        {'#', "a\0\xc3\xa9\r\n"s, "a\0\xc3\xa9\r\n"s},
        // A comment byte that is a line end goes alone.
        {'\n', "a\r\nb\n\nc", "a\rbc"},
        {'\r', "a\rb\r\nc", "ab\nc"},
        {'\xa7', "a\xa7 b\nc\xa6", "ac\xa6"},
    };
    for (const auto& [c, in, out] : rows) EXPECT_EQ(out, removeComments(c, in)) << show(in);
}

TEST(TextSkipString, FindsTheFirstUnescapedQuoteOrTheEnd) {
    const std::pair<std::string, long> rows[] = {
        {"\"\"x\"", 1},
        // The first byte is stepped over unseen.
        {"xab\"c", 3},
        {"\"a\\\"b\"", 5},
        // An escaped backslash escapes nothing.
        {"\"a\\\\\"b\"", 4},
        {"\"a\\\\\\\"b\"", 7},
        {"\"\\\xff\"\"", 3},
        {"\"it's{}#\"", 8},
        // Unterminated: the terminating zero byte, never past it.
        {"\"a\\\"", 4},
        {"\"ab\\", 4},
        {"\"a\0b\""s, 2},
    };
    for (const auto& [s, at] : rows) EXPECT_EQ(at, skipString(s.c_str()) - s.c_str()) << show(s);
}

TEST(TextBlockString, TextsAndBlockContentsInOrder) {
    const Case<std::string, Items> rows[] = {
        {"{}", "a {b} c {}", {"a", "b", "c", ""}},
        {"{}", "\t a b \n{ c d\r\n}\n e \n", {"a b", "c d", "e"}},
        // A text between blocks counts if not empty before trimming.
        {"{}", "{a} {b}", {"a", "", "b"}},
        {"{}", "{a}{b} ", {"a", "b", ""}},
        {"{}", "{a{b{c}d}e} f", {"a{b{c}d}e", "f"}},
        {"{}", "{{a}} b {c}", {"{a}", "b", "c"}},
        // An unterminated block counts unless empty.
        {"{}", "a {b", {"a", "b"}},
        {"{}", "a {", {"a"}},
        {"{}", "a { ", {"a", ""}},
        {"{}", "a } {b}}", {"a }", "b", "}"}},
        {"{}", "a \"{x}\" {\"}\" \"{\"} y", {"a \"{x}\"", "\"}\" \"{\"", "y"}},
        {"{}", "{\"a\\\"}\" \"a\\\\\"} x", {"\"a\\\"}\" \"a\\\\\"", "x"}},
        // A literal ends at the first zero byte and takes it with it.
        {"{}", "{a} \"b{c  ", {"a", "\"b{c  \0"s}},
        {"{}", "\"a\0b\" c"s, {"\"a\0b\" c\0"s}},
        {"{}", "a\0{b}"s, {"a\0"s, "b"}},
        {"()", "f(x, (y)) g", {"f", "x, (y)", "g"}},
        {"[]", "{a}[b]", {"{a}", "b"}},
        {"{}", "\xa0{\fa\v}", {"\xa0", "\fa\v"}},
    };
    for (const auto& [d, in, out] : rows) EXPECT_EQ(out, blockString(d[0], d[1], in)) << show(in);
}

TEST(TextListString, CutsOutsideLiteralsOnly) {
    const Case<char, Items> rows[] = {
        {',', " a \t,\n b\r", {"a", "b"}},
        {';', ";a;;b;", {"a", "b"}},
        {';', "a; ;b;\n", {"a", "", "b", ""}},
        {',', "a, \"b,c\"", {"a", "\"b,c\""}},
        {',', "x\"y,z\"w,v", {"x\"y,z\"w", "v"}},
        {',', "\"a\\\",b\",\"c\\\\\",d", {"\"a\\\",b\"", "\"c\\\\\"", "d"}},
        {',', "f(a,b),{c,d}", {"f(a", "b)", "{c", "d}"}},
        {',', "a,\"b\\\",c", {"a", "\"b\\\",c\0"s}},
        {' ', "a  \"b c\"", {"a", "\"b c\""}},
        {',', "\f,a\0b,\xff"s, {"\f", "a\0b"s, "\xff"}},
    };
    for (const auto& [c, in, out] : rows) EXPECT_EQ(out, listString(c, in)) << show(in);
}

TEST(TextTrimAndSplit, TrimFourBlanksSplitAtFirstSeparatorOrEachSpace) {
    const std::pair<std::string, std::string> rows[] = {
        {" \t\r\na b\n\r\t ", "a b"},
        {"  a  \t\n b  ", "a  \t\n b"},
        {" \t\n\r ", ""},
        // Form feed, vertical tab, zero and high bytes stay.
        {" \f\va\v\f ", "\f\va\v\f"},
        {" \0a\xa0\x85 "s, "\0a\xa0\x85"s},
    };
    for (const auto& [in, out] : rows) EXPECT_EQ(out, trimString(in)) << show(in);
    const Case<std::string, Halves> halves[] = {
        {"->", "a -> b -> c", {"a", "b -> c"}},
        {"--", "a---b", {"a", "-b"}},
        {"->", "  a - > b \n", {"a - > b", ""}},
        {"", "  a b ", {"", "a b"}},
        {"=", "= x =", {"", "x ="}},
        {"=", "\"a=b\" = c", {"\"a", "b\" = c"}},
        {"=", "\fa \t= b\v", {"\fa", "b\v"}},
    };
    for (const auto& [sep, in, out] : halves) EXPECT_EQ(out, splitString(sep, in)) << show(in);
    const std::pair<std::string, std::vector<std::string>> pieces[] = {
        {"a b  c", {"a", "b", "c"}},
        {"   ", {}},
        {" \"a b\" c\td\n \r\n\v", {"\"a", "b\"", "c\td\n", "\r\n\v"}},
        {"a\0b\xa0 c"s, {"a\0b\xa0"s, "c"}},
    };
    for (const auto& [in, out] : pieces) EXPECT_EQ(out, splitSpace(in)) << show(in);
}

TEST(TextLiterals, FormsAndValues) {
    const float inf = std::numeric_limits<float>::infinity();
    // text, forms (isBool, toBool, isInteger, isFloat, isString), toInteger, toFloat
    const std::tuple<std::string, std::string, int, float> rows[] = {
        {"true", "bt---", 0, 0.0f},
        {"false", "b----", 0, 0.0f},
        {"True", "-----", 0, 0.0f},
        {"true ", "-----", 0, 0.0f},
        {"\"true\"", "----s", 0, 0.0f},
        {"", "--if-", 0, 0.0f},
        {"-007", "--if-", -7, -7.0f},
        {"-0", "--if-", 0, -0.0f},
        // A lone "-" is no sign; a "+" never is.
        {"-", "-----", 0, 0.0f},
        {"+5", "-----", 5, 5.0f},
        {"--5", "-----", -5, -5.0f},
        // No trimming; other bytes, 0xFF and zero too, add nothing but multiply in toInteger.
        {" 12", "-----", 12, 12.0f},
        {"12 ", "-----", 120, 12.0f},
        {"-\3772", "-----", -2, -2.0f},
        {"1.5\0"s, "-----", 1050, 1.5f},
        // No hexadecimal form, yet a leading "0x" converts as one, wrapping at 32 bits.
        {"0x10", "-----", 16, 10.0f},
        {"0xAbC", "-----", 2748, 0.0f},
        {"0x1-0", "-----", 256, 10.0f},
        {"-0x10", "-----", -10, -10.0f},
        {"0x80000000", "-----", INT_MIN, 80000000.0f},
        // Decimal wraps too; toFloat rounds at every single-precision step.
        {"2147483648", "--if-", INT_MIN, 2147483520.0f},
        {"-2147483649", "--if-", INT_MAX, -2147483520.0f},
        {"1" + std::string(39, '0'), "--if-", 0, inf},
        {"0.29", "---f-", 29, 0x1.28f5c4p-2f},
        {"infinity", "---f-", 0, inf},
        {"-infinity", "-----", 0, -0.0f},
        {"infinity ", "-----", 0, 0.0f},
        {"1.5", "---f-", 105, 1.5f},
        {"-.5", "---f-", -5, -0.5f},
        {"5.", "---f-", 50, 5.0f},
        {".", "---f-", 0, 0.0f},
        {"1e5", "-----", 105, 15.0f},
        {"1.2.5", "-----", 10205, 1.25f},
        {".-5", "-----", 5, 0.5f},
        // isString trims the four blanks, then wants a quote first and last.
        {" \" ", "----s", 0, 0.0f},
        {"\"a", "-----", 0, 0.0f},
        {"a\"", "-----", 0, 0.0f},
        {"\t\r\n\"a\" \"b\"\r\n", "----s", 0, 0.0f},
        {"\f\"a\"", "-----", 0, 0.0f},
        {"\"a\"\0"s, "-----", 0, 0.0f},
        {" \t\r\n", "-----", 0, 0.0f},
    };
    for (const auto& [in, form, integer, real] : rows) {
        EXPECT_EQ(form, forms(in)) << show(in);
        EXPECT_EQ(integer, toInteger(in)) << show(in);
        EXPECT_EQ(real, toFloat(in)) << show(in);
        EXPECT_EQ(std::signbit(real), std::signbit(toFloat(in))) << show(in);
    }
}

TEST(TextToString, DropsTheOuterBytesAndUndoesEscapes) {
    const std::pair<std::string, std::string> rows[] = {
        {"\"abc\"", "abc"},
        {"\"\"", ""},
        {"ab", ""},
        // The outer bytes are not looked at.
        {"xaby", "ab"},
        {"\"a\"b\"", "a\"b"},
        {"\" a\\tb \"", " a\tb "},
        {"\"\\n\\r\\t\\0\\N\\q\"", "\n\r\t\0Nq"s},
        {"\"\\\\\\\"\\\xff\"", "\\\"\xff"},
        {"\"\\\\n\"", "\\n"},
        // A backslash read last adds nothing.
        {"\"a\\\"", "a"},
        {"\"a\0b\""s, "a\0b"s},
    };
    for (const auto& [in, out] : rows) EXPECT_EQ(out, toString(in)) << show(in);
    // Blanks around are no requirement beyond a bounded read.
    EXPECT_EQ(0u, toString("  \"ab\"  ").find("ab"));
}
