// The text utilities, the lexer of the program language and the parser of literal
// values. Their edges define what the language accepts, so every expected value is written
// out byte by byte, odd ones included. Strings with zero bytes use the ""s literal.

#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "textutils.h"

using namespace Tessarity;
using namespace std::string_literals;

namespace {

typedef std::list<std::string> Items;
typedef std::vector<std::string> Pieces;
typedef std::pair<std::string, std::string> Halves;

// Offset of skipString's answer from the start of the text.
std::ptrdiff_t skipOffset(const char* text) { return skipString(text) - text; }

}  // namespace

// ---------------------------------------------------------------------------------------
// removeComments

TEST(TextRemoveComments, CommentRunsToTheLineEndWhichGoesWithIt) {
    EXPECT_EQ("a c", removeComments('#', "a # b\nc"));
    EXPECT_EQ("ac", removeComments('#', "a#b\nc"));
}

TEST(TextRemoveComments, LineOfOnlyACommentDisappearsWithItsLineEnd) {
    EXPECT_EQ("a\nb", removeComments('#', "a\n# only a comment\nb"));
    EXPECT_EQ("a\nb", removeComments('#', "a\n#\nb"));
    EXPECT_EQ("ab", removeComments('#', "a#1\n#2\nb"));
}

TEST(TextRemoveComments, CommentWithoutLineEndDropsTheRest) {
    EXPECT_EQ("a ", removeComments('#', "a # b"));
    EXPECT_EQ("abc", removeComments('#', "abc#"));
    EXPECT_EQ("", removeComments('#', "# all of it"));
    EXPECT_EQ("", removeComments('#', "#"));
}

TEST(TextRemoveComments, CarriageReturnEndsACommentToo) {
    EXPECT_EQ("ac", removeComments('#', "a#b\rc"));
    // Only the first line end goes with the comment: of CR LF the LF stays.
    EXPECT_EQ("a\nc", removeComments('#', "a#b\r\nc"));
    EXPECT_EQ("a\rc", removeComments('#', "a#b\n\rc"));
}

TEST(TextRemoveComments, OtherControlBytesDoNotEndAComment) {
    EXPECT_EQ("ae", removeComments('#', "a#b\tc\fd\v\ne"));
    EXPECT_EQ("a", removeComments('#', "a#b\0c"s));
}

TEST(TextRemoveComments, CommentByteInsideACommentChangesNothing) {
    EXPECT_EQ("ad", removeComments('#', "a#b#c\nd"));
    EXPECT_EQ("a", removeComments('#', "a##"));
}

TEST(TextRemoveComments, StringLiteralsAreNotHonoured) {
    EXPECT_EQ("x = \"ay", removeComments('#', "x = \"a#b\"\ny"));
    EXPECT_EQ("s = \"", removeComments('#', "s = \"#\""));
}

TEST(TextRemoveComments, TextWithoutCommentIsCopied) {
    EXPECT_EQ("", removeComments('#', ""));
    EXPECT_EQ("a\nb\r\n\tc\f", removeComments('#', "a\nb\r\n\tc\f"));
    EXPECT_EQ("a\0b"s, removeComments('#', "a\0b"s));
    EXPECT_EQ("\xc3\xa9\xff", removeComments('#', "\xc3\xa9\xff"));
}

TEST(TextRemoveComments, LineFeedAsCommentDropsOnlyItself) {
    EXPECT_EQ("abc", removeComments('\n', "a\nb\n\nc"));
    EXPECT_EQ("a#b", removeComments('\n', "a\n#b"));
    EXPECT_EQ("a\rb", removeComments('\n', "a\r\nb"));
    EXPECT_EQ("", removeComments('\n', "\n"));
}

TEST(TextRemoveComments, CarriageReturnAsCommentDropsOnlyItself) {
    EXPECT_EQ("ab\nc", removeComments('\r', "a\rb\r\nc"));
}

TEST(TextRemoveComments, OtherCommentBytes) {
    EXPECT_EQ("a b\n", removeComments(';', "a;x\n b\n"));
    EXPECT_EQ("ac", removeComments('\xa7', "a\xa7 b\nc"));
    // A high byte matches only itself.
    EXPECT_EQ("a\xa6 b\nc", removeComments('\xa7', "a\xa6 b\nc"));
}

// ---------------------------------------------------------------------------------------
// skipString

TEST(TextSkipString, FindsTheClosingQuote) {
    EXPECT_EQ(4, skipOffset("\"abc\" tail"));
    EXPECT_EQ(4, skipOffset("\"abc\"\"d\""));
    EXPECT_EQ('"', *skipString("\"abc\" tail"));
}

TEST(TextSkipString, ScanStartsBehindTheOpeningQuote) {
    EXPECT_EQ(1, skipOffset("\"\""));
    EXPECT_EQ(1, skipOffset("\"\"x\""));
    // The first byte is stepped over unseen.
    EXPECT_EQ(3, skipOffset("xab\"c"));
}

TEST(TextSkipString, EscapedQuoteIsSkipped) {
    // "a\"b"
    EXPECT_EQ(5, skipOffset("\"a\\\"b\""));
    // "\""
    EXPECT_EQ(3, skipOffset("\"\\\"\""));
}

TEST(TextSkipString, EscapedBackslashEscapesNothing) {
    // "a\\"b" : the quote behind two backslashes closes
    EXPECT_EQ(4, skipOffset("\"a\\\\\"b\""));
    // "a\\\"b" : three backslashes, the quote is escaped
    EXPECT_EQ(7, skipOffset("\"a\\\\\\\"b\""));
    // "\\\\" : four backslashes
    EXPECT_EQ(5, skipOffset("\"\\\\\\\\\""));
}

TEST(TextSkipString, BackslashEscapesAnyByte) {
    EXPECT_EQ(3, skipOffset("\"\\n\""));
    EXPECT_EQ(3, skipOffset("\"\\\xff\"\""));  // the high byte is escaped, not the quote
}

TEST(TextSkipString, UnterminatedLiteralEndsAtTheZeroByte) {
    const char* text = "\"abc";
    EXPECT_EQ(text + 4, skipString(text));
    EXPECT_EQ('\0', *skipString(text));
    EXPECT_EQ(1, skipOffset("\""));
    // An escaped last quote leaves the literal open.
    EXPECT_EQ(4, skipOffset("\"a\\\""));
}

TEST(TextSkipString, TrailingBackslashDoesNotReadPastTheEnd) {
    const char* text = "\"ab\\";
    EXPECT_EQ(text + 4, skipString(text));
    EXPECT_EQ('\0', *skipString(text));
    EXPECT_EQ(2, skipOffset("\"\\"));
}

TEST(TextSkipString, ZeroByteInsideAStdStringEndsTheScan) {
    const std::string text = "\"a\0b\""s;
    EXPECT_EQ(2, skipOffset(text.c_str()));
}

TEST(TextSkipString, OnlyDoubleQuotesDelimit) {
    EXPECT_EQ(5, skipOffset("\"it's\""));
    EXPECT_EQ(3, skipOffset("\"\xc3\xa9\""));
    EXPECT_EQ(4, skipOffset("\"{}#\""));
}

// ---------------------------------------------------------------------------------------
// trimString

TEST(TextTrimString, RemovesTabLineFeedCarriageReturnAndSpaceFromBothEnds) {
    EXPECT_EQ("a b", trimString(" \t\r\na b\n\r\t "));
    EXPECT_EQ("a", trimString("a"));
    EXPECT_EQ("a", trimString("\ta"));
    EXPECT_EQ("a", trimString("a\n"));
}

TEST(TextTrimString, KeepsInteriorWhiteSpace) {
    EXPECT_EQ("a  \t\n b", trimString("  a  \t\n b  "));
}

TEST(TextTrimString, OnlyWhiteSpaceGivesEmpty) {
    EXPECT_EQ("", trimString(""));
    EXPECT_EQ("", trimString(" "));
    EXPECT_EQ("", trimString(" \t\n\r \r\n"));
}

TEST(TextTrimString, FormFeedAndVerticalTabStay) {
    EXPECT_EQ("\fa\v", trimString("\fa\v"));
    EXPECT_EQ("\f", trimString(" \f "));
    EXPECT_EQ("\v \f", trimString("\t\v \f\n"));
}

TEST(TextTrimString, ZeroAndHighBytesAreNotWhiteSpace) {
    EXPECT_EQ("\0a\0"s, trimString(" \0a\0 "s));
    EXPECT_EQ("\240a\240", trimString("\240a\240"));  // 0xA0, no-break space in Latin-1
    EXPECT_EQ("\x85", trimString(" \x85\n"));
    EXPECT_EQ("\xff", trimString("\xff"));
}

// ---------------------------------------------------------------------------------------
// blockString

TEST(TextBlockString, TextsBetweenBlocksAndBlockContentsInOrder) {
    EXPECT_EQ((Items{"a", "b", "c", ""}), blockString('{', '}', "a {b} c {}"));
    EXPECT_EQ((Items{"x", "y"}), blockString('{', '}', "x{y}"));
    EXPECT_EQ((Items{"a", "b"}), blockString('{', '}', "{a}{b}"));
}

TEST(TextBlockString, ContentsAndTextsAreTrimmed) {
    EXPECT_EQ((Items{"a b", "c d", "e"}), blockString('{', '}', "\t a b \n{ c d\r\n}\n e \n"));
}

TEST(TextBlockString, EmptyText) { EXPECT_EQ(Items{}, blockString('{', '}', "")); }

TEST(TextBlockString, TextWithoutBlocksIsOneItem) {
    EXPECT_EQ(Items{"a b"}, blockString('{', '}', " a b "));
}

TEST(TextBlockString, EmptyBlockAlwaysYieldsAnItem) {
    EXPECT_EQ(Items{""}, blockString('{', '}', "{}"));
    EXPECT_EQ(Items{""}, blockString('{', '}', "{ \t\n}"));
    EXPECT_EQ((Items{"", ""}), blockString('{', '}', "{}{}"));
    EXPECT_EQ((Items{"f", ""}), blockString('{', '}', "f{}"));
}

TEST(TextBlockString, BlankBetweenTextIsAnItemOnlyIfNotEmptyBeforeTrimming) {
    // The blank between the blocks is a text of its own.
    EXPECT_EQ((Items{"a", "", "b"}), blockString('{', '}', "{a} {b}"));
    EXPECT_EQ((Items{"a", "", "b"}), blockString('{', '}', "{a}\n{b}"));
    EXPECT_EQ((Items{"", "a"}), blockString('{', '}', " {a}"));
    EXPECT_EQ((Items{"a", ""}), blockString('{', '}', "{a} "));
    EXPECT_EQ(Items{""}, blockString('{', '}', "   "));
    // With nothing between the blocks there is no item.
    EXPECT_EQ((Items{"a", "b"}), blockString('{', '}', "{a}{b}"));
}

TEST(TextBlockString, NestedBlocksStayInTheOuterItem) {
    EXPECT_EQ(Items{"a {b} c"}, blockString('{', '}', "{a {b} c}"));
    EXPECT_EQ((Items{"a{b{c}d}e", "f"}), blockString('{', '}', "{a{b{c}d}e} f"));
    EXPECT_EQ((Items{"x", "{}", "y"}), blockString('{', '}', "x {{}} y"));
    // The depth goes back to 0 after the outer block.
    EXPECT_EQ((Items{"{a}", "b", "c"}), blockString('{', '}', "{{a}} b {c}"));
}

TEST(TextBlockString, UnterminatedBlockGivesItsContentUnlessEmpty) {
    EXPECT_EQ((Items{"a", "b"}), blockString('{', '}', "a {b"));
    EXPECT_EQ((Items{"a", "b"}), blockString('{', '}', "a {b}"));
    EXPECT_EQ(Items{"a"}, blockString('{', '}', "a {"));
    EXPECT_EQ(Items{}, blockString('{', '}', "{"));
    // A blank unterminated block is not empty before trimming.
    EXPECT_EQ((Items{"a", ""}), blockString('{', '}', "a { "));
    // Unterminated with an inner block closed: the inner close is copied.
    EXPECT_EQ(Items{"a{b}"}, blockString('{', '}', "{a{b}"));
    EXPECT_EQ(Items{"a{b"}, blockString('{', '}', "{a{b"));
}

TEST(TextBlockString, CloseThatOpensNothingIsAnOrdinaryByte) {
    EXPECT_EQ(Items{"a}b"}, blockString('{', '}', "a}b"));
    EXPECT_EQ((Items{"a }", "b"}), blockString('{', '}', "a } {b}"));
    EXPECT_EQ((Items{"a", "}"}), blockString('{', '}', "{a}}"));
    EXPECT_EQ(Items{"}"}, blockString('{', '}', "}"));
}

TEST(TextBlockString, QuotedLiteralsAreCopiedWholeOutsideBlocks) {
    EXPECT_EQ((Items{"a \"{x}\"", "b"}), blockString('{', '}', "a \"{x}\" {b}"));
    EXPECT_EQ((Items{"\"}\" x"}), blockString('{', '}', "\"}\" x"));
}

TEST(TextBlockString, QuotedLiteralsAreCopiedWholeInsideBlocks) {
    EXPECT_EQ(Items{"\"}\""}, blockString('{', '}', "{\"}\"}"));
    EXPECT_EQ((Items{"\"{\" x", "y"}), blockString('{', '}', "{\"{\" x} y"));
    EXPECT_EQ((Items{"p(\"a}b\")", "q"}), blockString('{', '}', "{p(\"a}b\")}q"));
}

TEST(TextBlockString, EscapesInsideLiteralsFollowSkipString) {
    // {"a\"}"} : the escaped quote does not close the literal.
    EXPECT_EQ(Items{"\"a\\\"}\""}, blockString('{', '}', "{\"a\\\"}\"}"));
    // {"a\\"} : the escaped backslash leaves the quote to close it.
    EXPECT_EQ((Items{"\"a\\\\\"", "x"}), blockString('{', '}', "{\"a\\\\\"} x"));
}

TEST(TextBlockString, UnterminatedLiteralRunsToTheEndWithTheZeroByte) {
    EXPECT_EQ(Items{"a \"b{c\0"s}, blockString('{', '}', "a \"b{c"));
    EXPECT_EQ(Items{"\"x}\0"s}, blockString('{', '}', "{\"x}"));
    EXPECT_EQ((Items{"a", "\"b  \0"s}), blockString('{', '}', "{a} \"b  "));
    EXPECT_EQ(Items{"\"\0"s}, blockString('{', '}', "\""));
    // A trailing escaped quote leaves it open too.
    EXPECT_EQ(Items{"\"a\\\"\0"s}, blockString('{', '}', "\"a\\\""));
}

TEST(TextBlockString, ZeroByteInsideALiteralEndsItAsForSkipString) {
    // The literal "a ends at the zero byte, which it takes; b is ordinary, and the second
    // quote opens a literal that runs to the end and takes the terminating zero byte.
    EXPECT_EQ(Items{"\"a\0b\" c\0"s}, blockString('{', '}', "\"a\0b\" c"s));
    // Outside a literal a zero byte is an ordinary byte.
    EXPECT_EQ((Items{"a\0"s, "b"}), blockString('{', '}', "a\0{b}"s));
}

TEST(TextBlockString, OtherDelimiters) {
    EXPECT_EQ((Items{"f", "x, (y)", "g"}), blockString('(', ')', "f(x, (y)) g"));
    EXPECT_EQ((Items{"a", "b"}), blockString('[', ']', "a[b]"));
    // Braces are ordinary when the delimiters are brackets.
    EXPECT_EQ((Items{"{a}", "b"}), blockString('[', ']', "{a}[b]"));
}

TEST(TextBlockString, FormFeedAndHighBytesAreKept) {
    EXPECT_EQ(Items{"\fa\v"}, blockString('{', '}', "{\fa\v}"));
    EXPECT_EQ((Items{"\xc3\xa9", "\xff"}), blockString('{', '}', "\xc3\xa9 {\xff}"));
    EXPECT_EQ((Items{"\xa0", "a"}), blockString('{', '}', "\xa0{a}"));
}

// ---------------------------------------------------------------------------------------
// listString

TEST(TextListString, CutsAtEachSeparatorAndTrims) {
    EXPECT_EQ((Items{"a", "b", "c"}), listString(',', "a,b,c"));
    EXPECT_EQ((Items{"a", "b"}), listString(',', " a \t,\n b\r"));
    EXPECT_EQ((Items{"a b", "c"}), listString(';', "a b; c"));
}

TEST(TextListString, EmptyText) { EXPECT_EQ(Items{}, listString(';', "")); }

TEST(TextListString, AdjacentSeparatorsGiveNoItem) {
    EXPECT_EQ((Items{"a", "b"}), listString(';', "a;;b"));
    EXPECT_EQ(Items{}, listString(';', ";"));
    EXPECT_EQ(Items{}, listString(';', ";;;"));
    EXPECT_EQ(Items{"a"}, listString(';', "a;"));
    EXPECT_EQ(Items{"a"}, listString(';', ";a"));
}

TEST(TextListString, BlankBetweenSeparatorsGivesAnEmptyItem) {
    EXPECT_EQ((Items{"a", "", "b"}), listString(';', "a; ;b"));
    EXPECT_EQ(Items{""}, listString(';', " "));
    EXPECT_EQ((Items{"a", ""}), listString(';', "a; "));
    EXPECT_EQ((Items{"", "a"}), listString(';', " ;a"));
    EXPECT_EQ((Items{"a", ""}), listString(';', "a;\n"));
}

TEST(TextListString, SeparatorInsideQuotesDoesNotCut) {
    EXPECT_EQ((Items{"a", "\"b,c\""}), listString(',', "a, \"b,c\""));
    EXPECT_EQ((Items{"x\"y,z\"w", "v"}), listString(',', "x\"y,z\"w,v"));
    EXPECT_EQ((Items{"\",\"", "\"\""}), listString(',', "\",\",\"\""));
}

TEST(TextListString, EscapesInsideLiteralsFollowSkipString) {
    // "a\",b",c
    EXPECT_EQ((Items{"\"a\\\",b\"", "c"}), listString(',', "\"a\\\",b\",c"));
    // "a\\",b
    EXPECT_EQ((Items{"\"a\\\\\"", "b"}), listString(',', "\"a\\\\\",b"));
}

TEST(TextListString, BracketsGiveNoProtection) {
    EXPECT_EQ((Items{"f(a", "b)", "c"}), listString(',', "f(a,b),c"));
    EXPECT_EQ((Items{"{a", "b}"}), listString(',', "{a,b}"));
    EXPECT_EQ((Items{"'a", "b'"}), listString(',', "'a,b'"));
}

TEST(TextListString, UnterminatedLiteralRunsToTheEndWithTheZeroByte) {
    EXPECT_EQ((Items{"a", "\"b,c\0"s}), listString(',', "a,\"b,c"));
    EXPECT_EQ(Items{"\"\0"s}, listString(',', "\""));
    EXPECT_EQ(Items{"\"a\\\",\0"s}, listString(',', "\"a\\\","));
}

TEST(TextListString, SpaceAsSeparator) {
    EXPECT_EQ((Items{"a", "b"}), listString(' ', "a  b"));
    EXPECT_EQ((Items{"a", "\"b c\""}), listString(' ', "a \"b c\""));
}

TEST(TextListString, FormFeedZeroAndHighBytesAreKept) {
    EXPECT_EQ((Items{"\f", "a"}), listString(',', "\f,a"));
    EXPECT_EQ((Items{"\xe2\x82\xac", "\xff"}), listString(',', "\xe2\x82\xac,\xff"));
    EXPECT_EQ((Items{"a\0b"s, "c"}), listString(',', "a\0b,c"s));
}

// ---------------------------------------------------------------------------------------
// splitString

TEST(TextSplitString, SplitsAtTheFirstOccurrence) {
    EXPECT_EQ(Halves("a", "b -> c"), splitString("->", "a -> b -> c"));
    EXPECT_EQ(Halves("x", "1"), splitString("=", " x = 1 "));
    EXPECT_EQ(Halves("a", "-b"), splitString("--", "a---b"));
}

TEST(TextSplitString, MissingSeparatorGivesTheWholeTrimmedText) {
    EXPECT_EQ(Halves("a b", ""), splitString("->", "  a b \n"));
    EXPECT_EQ(Halves("a - > b", ""), splitString("->", "a - > b"));
    EXPECT_EQ(Halves("", ""), splitString("->", ""));
    EXPECT_EQ(Halves("-", ""), splitString("->", "-"));
}

TEST(TextSplitString, EmptySeparatorMatchesAtOnce) {
    EXPECT_EQ(Halves("", "a b"), splitString("", "  a b "));
    EXPECT_EQ(Halves("", ""), splitString("", ""));
}

TEST(TextSplitString, SeparatorAtAnEnd) {
    EXPECT_EQ(Halves("", "x"), splitString("=", "= x"));
    EXPECT_EQ(Halves("x", ""), splitString("=", "x ="));
    EXPECT_EQ(Halves("", ""), splitString("=", "="));
}

TEST(TextSplitString, QuotesAreNotHonoured) {
    EXPECT_EQ(Halves("\"a", "b\" = c"), splitString("=", "\"a=b\" = c"));
}

TEST(TextSplitString, OnlyTheFourWhiteSpaceBytesAreTrimmed) {
    EXPECT_EQ(Halves("\fa", "b\v"), splitString("=", "\fa = b\v"));
    EXPECT_EQ(Halves("a", "b"), splitString(":", "\ta\r\n:\n b\t"));
}

TEST(TextSplitString, HighBytesInTheSeparator) {
    EXPECT_EQ(Halves("a", "b"), splitString("\xe2\x86\x92", "a \xe2\x86\x92 b"));
}

// ---------------------------------------------------------------------------------------
// splitSpace

TEST(TextSplitSpace, CutsAtSpacesAndDropsEmptyPieces) {
    EXPECT_EQ((Pieces{"a", "b", "c"}), splitSpace("a b  c"));
    EXPECT_EQ(Pieces{"a"}, splitSpace("  a  "));
    EXPECT_EQ((Pieces{"x1", "y2"}), splitSpace("x1 y2"));
}

TEST(TextSplitSpace, EmptyAndBlankTexts) {
    EXPECT_EQ(Pieces{}, splitSpace(""));
    EXPECT_EQ(Pieces{}, splitSpace("   "));
}

TEST(TextSplitSpace, OtherWhiteSpaceIsNotCutNorTrimmed) {
    EXPECT_EQ((Pieces{"a\tb", "c\nd"}), splitSpace("a\tb c\nd"));
    EXPECT_EQ((Pieces{"\t", "\r\n"}), splitSpace("\t \r\n"));
    EXPECT_EQ(Pieces{"\fa\v"}, splitSpace(" \fa\v "));
}

TEST(TextSplitSpace, QuotesAreNotHonoured) {
    EXPECT_EQ((Pieces{"\"a", "b\"", "c"}), splitSpace("\"a b\" c"));
}

TEST(TextSplitSpace, ZeroAndHighBytesAreOrdinary) {
    EXPECT_EQ((Pieces{"a\240b", "c"}), splitSpace("a\240b c"));  // 0xA0 is no space
    EXPECT_EQ((Pieces{"a\0b"s, "c"}), splitSpace("a\0b c"s));
}

// ---------------------------------------------------------------------------------------
// isBool, toBool

TEST(TextBool, IsBoolExactlyTrueAndFalse) {
    EXPECT_TRUE(isBool("true"));
    EXPECT_TRUE(isBool("false"));
    EXPECT_FALSE(isBool(""));
    EXPECT_FALSE(isBool("True"));
    EXPECT_FALSE(isBool("FALSE"));
    EXPECT_FALSE(isBool(" true"));
    EXPECT_FALSE(isBool("true "));
    EXPECT_FALSE(isBool("true\n"));
    EXPECT_FALSE(isBool("truex"));
    EXPECT_FALSE(isBool("tru"));
    EXPECT_FALSE(isBool("1"));
    EXPECT_FALSE(isBool("0"));
    EXPECT_FALSE(isBool("yes"));
    EXPECT_FALSE(isBool("\"true\""));
    EXPECT_FALSE(isBool("true\0"s));
}

TEST(TextBool, ToBoolTrueExactlyForTrue) {
    EXPECT_TRUE(toBool("true"));
    EXPECT_FALSE(toBool("false"));
    EXPECT_FALSE(toBool(""));
    EXPECT_FALSE(toBool("True"));
    EXPECT_FALSE(toBool(" true"));
    EXPECT_FALSE(toBool("true "));
    EXPECT_FALSE(toBool("1"));
    EXPECT_FALSE(toBool("yes"));
    EXPECT_FALSE(toBool("\"true\""));
}

// ---------------------------------------------------------------------------------------
// isInteger

TEST(TextIsInteger, EmptyTextIsAnInteger) { EXPECT_TRUE(isInteger("")); }

TEST(TextIsInteger, Digits) {
    EXPECT_TRUE(isInteger("0"));
    EXPECT_TRUE(isInteger("7"));
    EXPECT_TRUE(isInteger("123"));
    EXPECT_TRUE(isInteger("007"));
    EXPECT_FALSE(isInteger("12a"));
    EXPECT_FALSE(isInteger("x"));
    EXPECT_FALSE(isInteger("1.0"));
    EXPECT_FALSE(isInteger("1e5"));
    EXPECT_FALSE(isInteger("1-"));
    EXPECT_FALSE(isInteger("1,000"));
}

TEST(TextIsInteger, MinusSignOnlyBeforeSomething) {
    EXPECT_TRUE(isInteger("-5"));
    EXPECT_TRUE(isInteger("-0"));
    EXPECT_TRUE(isInteger("-123"));
    EXPECT_FALSE(isInteger("-"));
    EXPECT_FALSE(isInteger("--5"));
    EXPECT_FALSE(isInteger("-a"));
    EXPECT_FALSE(isInteger("+5"));
    EXPECT_FALSE(isInteger("+"));
}

TEST(TextIsInteger, HexadecimalIsNeverAccepted) {
    EXPECT_FALSE(isInteger("0x10"));
    EXPECT_FALSE(isInteger("0x1"));
    EXPECT_FALSE(isInteger("0xff"));
    EXPECT_FALSE(isInteger("0x"));
    EXPECT_FALSE(isInteger("0X10"));
    EXPECT_FALSE(isInteger("-0x10"));
}

TEST(TextIsInteger, NoTrimming) {
    EXPECT_FALSE(isInteger(" 5"));
    EXPECT_FALSE(isInteger("5 "));
    EXPECT_FALSE(isInteger("5\n"));
    EXPECT_FALSE(isInteger(" "));
    EXPECT_FALSE(isInteger("- 5"));
}

TEST(TextIsInteger, LengthIsNotLimited) {
    EXPECT_TRUE(isInteger("99999999999999999999"));
    EXPECT_TRUE(isInteger("-99999999999999999999"));
    EXPECT_TRUE(isInteger("2147483648"));
}

TEST(TextIsInteger, ZeroAndHighBytesAreNotDigits) {
    EXPECT_FALSE(isInteger("5\0"s));
    EXPECT_FALSE(isInteger("\0"s));
    EXPECT_FALSE(isInteger("\xd9\xa3"));      // ARABIC-INDIC DIGIT THREE
    EXPECT_FALSE(isInteger("\xef\xbc\x95"));  // FULLWIDTH DIGIT FIVE
    EXPECT_FALSE(isInteger("1\xb2"));         // superscript two in Latin-1
    EXPECT_FALSE(isInteger("-\xff"));
}

// ---------------------------------------------------------------------------------------
// toInteger

TEST(TextToInteger, EmptyTextGivesZero) { EXPECT_EQ(0, toInteger("")); }

TEST(TextToInteger, Decimal) {
    EXPECT_EQ(0, toInteger("0"));
    EXPECT_EQ(42, toInteger("42"));
    EXPECT_EQ(7, toInteger("007"));
    EXPECT_EQ(-42, toInteger("-42"));
    EXPECT_EQ(0, toInteger("-0"));
}

TEST(TextToInteger, Hexadecimal) {
    EXPECT_EQ(16, toInteger("0x10"));
    EXPECT_EQ(1, toInteger("0x1"));
    EXPECT_EQ(255, toInteger("0xff"));
    EXPECT_EQ(255, toInteger("0xFF"));
    EXPECT_EQ(2748, toInteger("0xAbC"));
    EXPECT_EQ(0, toInteger("0x0"));
}

TEST(TextToInteger, HexadecimalNonDigitsStillMultiply) {
    EXPECT_EQ(1, toInteger("0xg1"));
    EXPECT_EQ(16, toInteger("0x1g"));
    EXPECT_EQ(256, toInteger("0x1-0"));
    EXPECT_EQ(16, toInteger("0x1 "));
}

TEST(TextToInteger, HexadecimalWraps) {
    EXPECT_EQ(-1, toInteger("0xffffffff"));
    EXPECT_EQ(std::numeric_limits<int>::min(), toInteger("0x80000000"));
    EXPECT_EQ(std::numeric_limits<int>::max(), toInteger("0x7fffffff"));
    EXPECT_EQ(0, toInteger("0x100000000"));
    EXPECT_EQ(591751049, toInteger("0x123456789"));  // 0x23456789
}

TEST(TextToInteger, OtherFormsAreDecimal) {
    EXPECT_EQ(0, toInteger("0x"));  // too short for the hexadecimal form
    EXPECT_EQ(10, toInteger("0X10"));
    EXPECT_EQ(-10, toInteger("-0x10"));
}

TEST(TextToInteger, DecimalNonDigitsStillMultiply) {
    EXPECT_EQ(102, toInteger("1a2"));
    EXPECT_EQ(105, toInteger("1.5"));
    EXPECT_EQ(120, toInteger("12 "));
    EXPECT_EQ(12, toInteger(" 12"));
    EXPECT_EQ(5, toInteger("+5"));
    EXPECT_EQ(-5, toInteger("--5"));
    EXPECT_EQ(0, toInteger("-"));
    EXPECT_EQ(0, toInteger("abc"));
    EXPECT_EQ(10, toInteger("1\xff"));
    EXPECT_EQ(0, toInteger("\xd9\xa3"));
    EXPECT_EQ(10, toInteger("1\0"s));
}

TEST(TextToInteger, DecimalWrapsAt32Bits) {
    EXPECT_EQ(2147483647, toInteger("2147483647"));
    EXPECT_EQ(std::numeric_limits<int>::min(), toInteger("2147483648"));
    EXPECT_EQ(-1, toInteger("4294967295"));
    EXPECT_EQ(0, toInteger("4294967296"));
    EXPECT_EQ(1, toInteger("4294967297"));
    EXPECT_EQ(1215752191, toInteger("99999999999"));
    EXPECT_EQ(std::numeric_limits<int>::min(), toInteger("-2147483648"));
    EXPECT_EQ(2147483647, toInteger("-2147483649"));
    EXPECT_EQ(1, toInteger("-4294967295"));
}

// ---------------------------------------------------------------------------------------
// isFloat

TEST(TextIsFloat, InfinityExactlyAsWritten) {
    EXPECT_TRUE(isFloat("infinity"));
    EXPECT_FALSE(isFloat("-infinity"));
    EXPECT_FALSE(isFloat("+infinity"));
    EXPECT_FALSE(isFloat("Infinity"));
    EXPECT_FALSE(isFloat("inf"));
    EXPECT_FALSE(isFloat("infinity "));
    EXPECT_FALSE(isFloat("nan"));
}

TEST(TextIsFloat, EmptyTextIsAFloat) { EXPECT_TRUE(isFloat("")); }

TEST(TextIsFloat, EveryIntegerFormIsAFloat) {
    EXPECT_TRUE(isFloat("0"));
    EXPECT_TRUE(isFloat("12"));
    EXPECT_TRUE(isFloat("-12"));
    EXPECT_TRUE(isFloat("99999999999999999999"));
}

TEST(TextIsFloat, PointForms) {
    EXPECT_TRUE(isFloat("1.5"));
    EXPECT_TRUE(isFloat("-1.5"));
    EXPECT_TRUE(isFloat("5."));
    EXPECT_TRUE(isFloat("-5."));
    EXPECT_TRUE(isFloat(".5"));
    EXPECT_TRUE(isFloat("-.5"));
    EXPECT_TRUE(isFloat("."));
    EXPECT_TRUE(isFloat("-."));
    EXPECT_TRUE(isFloat("3.14159"));
    EXPECT_TRUE(isFloat("007.500"));
}

TEST(TextIsFloat, Refused) {
    EXPECT_FALSE(isFloat("-"));
    EXPECT_FALSE(isFloat("--1"));
    EXPECT_FALSE(isFloat("+1"));
    EXPECT_FALSE(isFloat("1e5"));
    EXPECT_FALSE(isFloat("1.5e3"));
    EXPECT_FALSE(isFloat("1..2"));
    EXPECT_FALSE(isFloat("1.2.3"));
    EXPECT_FALSE(isFloat(".."));
    EXPECT_FALSE(isFloat(".-5"));
    EXPECT_FALSE(isFloat("1.-5"));
    EXPECT_FALSE(isFloat("1,5"));
    EXPECT_FALSE(isFloat("0x10"));
    EXPECT_FALSE(isFloat("1.5f"));
    EXPECT_FALSE(isFloat("a"));
}

TEST(TextIsFloat, NoTrimming) {
    EXPECT_FALSE(isFloat(" 1"));
    EXPECT_FALSE(isFloat("1 "));
    EXPECT_FALSE(isFloat("1. "));
    EXPECT_FALSE(isFloat(". "));
    EXPECT_FALSE(isFloat("1.5\n"));
    EXPECT_FALSE(isFloat(" "));
}

TEST(TextIsFloat, ZeroAndHighBytesAreNotDigits) {
    EXPECT_FALSE(isFloat("1.5\0"s));
    EXPECT_FALSE(isFloat("\xd9\xa3"));
    EXPECT_FALSE(isFloat("1.\xb2"));
    EXPECT_FALSE(isFloat("-\xff"));
}

// ---------------------------------------------------------------------------------------
// toFloat

TEST(TextToFloat, Infinity) {
    EXPECT_EQ(std::numeric_limits<float>::infinity(), toFloat("infinity"));
    // Not the exact text: every byte is skipped, the sign stays.
    EXPECT_EQ(0.0f, toFloat("-infinity"));
    EXPECT_TRUE(std::signbit(toFloat("-infinity")));
    EXPECT_EQ(0.0f, toFloat("infinity "));
    EXPECT_FALSE(std::signbit(toFloat("Infinity")));
}

TEST(TextToFloat, EmptyTextGivesZero) {
    EXPECT_EQ(0.0f, toFloat(""));
    EXPECT_FALSE(std::signbit(toFloat("")));
}

TEST(TextToFloat, IntegersAndPointForms) {
    EXPECT_EQ(1.5f, toFloat("1.5"));
    EXPECT_EQ(-0.5f, toFloat("-.5"));
    EXPECT_EQ(-1.5f, toFloat("-1.5"));
    EXPECT_EQ(5.0f, toFloat("5."));
    EXPECT_EQ(0.25f, toFloat(".25"));
    EXPECT_EQ(42.0f, toFloat("42"));
    EXPECT_EQ(-42.0f, toFloat("-42"));
    EXPECT_EQ(7.5f, toFloat("007.500"));
    EXPECT_EQ(0x1.99999ap-4f, toFloat("0.1"));
}

TEST(TextToFloat, SignOfZero) {
    EXPECT_EQ(0.0f, toFloat("."));
    EXPECT_FALSE(std::signbit(toFloat(".")));
    EXPECT_TRUE(std::signbit(toFloat("-.")));
    EXPECT_TRUE(std::signbit(toFloat("-0")));
    // A lone "-" is no sign: it is skipped as a non-digit.
    EXPECT_EQ(0.0f, toFloat("-"));
    EXPECT_FALSE(std::signbit(toFloat("-")));
}

TEST(TextToFloat, NonDigitsAreSkipped) {
    EXPECT_EQ(15.0f, toFloat("1e5"));
    EXPECT_EQ(15.0f, toFloat("1,5"));
    EXPECT_EQ(2.5f, toFloat("+2.5"));
    EXPECT_EQ(2.0f, toFloat(" 2"));
    EXPECT_EQ(2.0f, toFloat(" -2"));  // the "-" is not first, so no sign
    EXPECT_EQ(-2.0f, toFloat("--2"));
    EXPECT_EQ(1.25f, toFloat("1.2.5"));  // the second "." is skipped in the fraction
    EXPECT_EQ(1.25f, toFloat("1.2x5"));
    EXPECT_EQ(12.0f, toFloat("1\3772"));  // 0xFF between the digits
    EXPECT_EQ(0.0f, toFloat("abc"));
}

TEST(TextToFloat, SinglePrecisionArithmeticFixesTheRounding) {
    // Correctly rounded, 3.14159 would be 0x1.921fap+1f.
    EXPECT_EQ(0x1.921f9cp+1f, toFloat("3.14159"));
    // 0.2f + 9.0f / 100.0f is a tie in single precision, rounded to even; correctly
    // rounded, 0.29 would be 0x1.28f5c2p-2f.
    EXPECT_EQ(0x1.28f5c4p-2f, toFloat("0.29"));
    EXPECT_EQ(-0x1.28f5c4p-2f, toFloat("-0.29"));
    EXPECT_EQ(16777216.0f, toFloat("16777217"));
    EXPECT_EQ(0x1.edd2f2p+6f, toFloat("123.456"));
}

TEST(TextToFloat, OverflowGivesInfinity) {
    EXPECT_EQ(std::numeric_limits<float>::infinity(),
              toFloat("1000000000000000000000000000000000000000"));
    EXPECT_EQ(-std::numeric_limits<float>::infinity(),
              toFloat("-1000000000000000000000000000000000000000"));
}

// ---------------------------------------------------------------------------------------
// isString

TEST(TextIsString, FirstAndLastByteAreDoubleQuotes) {
    EXPECT_TRUE(isString("\"a\""));
    EXPECT_TRUE(isString("\"\""));
    EXPECT_TRUE(isString("\"a\" \"b\""));
    EXPECT_TRUE(isString("\"a\\\""));  // the last quote is escaped, still a quote
    EXPECT_FALSE(isString("\"a"));
    EXPECT_FALSE(isString("a\""));
    EXPECT_FALSE(isString("a"));
    EXPECT_FALSE(isString("'a'"));
}

TEST(TextIsString, SingleDoubleQuotePasses) {
    EXPECT_TRUE(isString("\""));
    EXPECT_TRUE(isString(" \" "));
}

TEST(TextIsString, EmptyAndBlankTextsFail) {
    EXPECT_FALSE(isString(""));
    EXPECT_FALSE(isString(" \t\r\n"));
}

TEST(TextIsString, TrimsTheFourWhiteSpaceBytesOnly) {
    EXPECT_TRUE(isString("  \"a\"\n"));
    EXPECT_TRUE(isString("\t\r\n\"a\"\r\n"));
    EXPECT_FALSE(isString("\f\"a\""));
    EXPECT_FALSE(isString("\"a\"\v"));
    EXPECT_FALSE(isString("\"a\"\0"s));
    EXPECT_FALSE(isString("\xa0\"a\""));
}

// ---------------------------------------------------------------------------------------
// toString

TEST(TextToString, DropsTheOuterQuotes) {
    EXPECT_EQ("abc", toString("\"abc\""));
    EXPECT_EQ("", toString("\"\""));
    EXPECT_EQ(" a ", toString("\" a \""));
    EXPECT_EQ("\xc3\xa9", toString("\"\xc3\xa9\""));
}

TEST(TextToString, ShortTextsGiveEmpty) {
    EXPECT_EQ("", toString(""));
    EXPECT_EQ("", toString("\""));
    EXPECT_EQ("", toString("ab"));
}

TEST(TextToString, OuterBytesAreNotLookedAt) {
    EXPECT_EQ("ab", toString("xaby"));
    EXPECT_EQ("b", toString("abc"));
    EXPECT_EQ("a\"b", toString("\"a\"b\""));
}

TEST(TextToString, Escapes) {
    EXPECT_EQ("a\tb", toString("\"a\\tb\""));
    EXPECT_EQ("\n\r\t\0"s, toString("\"\\n\\r\\t\\0\""));
    EXPECT_EQ("a\0b"s, toString("\"a\\0b\""));
}

TEST(TextToString, OtherEscapedBytesStandForThemselves) {
    EXPECT_EQ("\\", toString("\"\\\\\""));
    EXPECT_EQ("\"", toString("\"\\\"\""));
    EXPECT_EQ("q", toString("\"\\q\""));
    EXPECT_EQ("x41", toString("\"\\x41\""));
    EXPECT_EQ("N", toString("\"\\N\""));
    EXPECT_EQ("\xff", toString("\"\\\xff\""));
    // An escaped backslash does not escape what follows it.
    EXPECT_EQ("\\n", toString("\"\\\\n\""));
    EXPECT_EQ("a\\\"b", toString("\"a\\\\\\\"b\""));
}

TEST(TextToString, BackslashAsTheLastByteReadAddsNothing) {
    // "a\" : the n - 2 bytes read are "a" and the backslash.
    EXPECT_EQ("a", toString("\"a\\\""));
}

TEST(TextToString, ZeroBytesAreCopied) { EXPECT_EQ("a\0b"s, toString("\"a\0b\""s)); }

TEST(TextToString, WhiteSpaceAroundIsReadWithinBounds) {
    // Not a requirement beyond staying inside the trimmed copy.
    const std::string result = toString("  \"ab\"  ");
    EXPECT_EQ(0u, result.find("ab"));
    EXPECT_LE(result.size(), 3u);
    EXPECT_EQ("", toString("    "));
}

// ---------------------------------------------------------------------------------------
// The utilities together, as the language uses them.

TEST(TextLexing, CommentInsideALiteralCutsIt) {
    const std::string text = removeComments('#', "print(\"a#b\")\nx");
    EXPECT_EQ("print(\"ax", text);
    // The cut literal now runs to the end and takes the zero byte.
    EXPECT_EQ((Items{"print", "\"ax\0"s}), blockString('(', ')', text));
}

TEST(TextLexing, ListOfLiterals) {
    const Items items = listString(',', "1, -2.5, \"a, b\", true, 0x10");
    ASSERT_EQ((Items{"1", "-2.5", "\"a, b\"", "true", "0x10"}), items);
    auto it = items.begin();
    EXPECT_TRUE(isInteger(*it));
    EXPECT_EQ(1, toInteger(*it));
    ++it;
    EXPECT_FALSE(isInteger(*it));
    EXPECT_TRUE(isFloat(*it));
    EXPECT_EQ(-2.5f, toFloat(*it));
    ++it;
    EXPECT_TRUE(isString(*it));
    EXPECT_EQ("a, b", toString(*it));
    ++it;
    EXPECT_TRUE(isBool(*it));
    EXPECT_TRUE(toBool(*it));
    ++it;
    EXPECT_FALSE(isInteger(*it));
    EXPECT_FALSE(isFloat(*it));
    EXPECT_EQ(16, toInteger(*it));
}

TEST(TextLexing, StatementsBlocksAndOperators) {
    const std::string program =
        removeComments('#', "filter f { a -> b; # wiring\n  c -> \"d;e\" }\nprocess p");
    const Items blocks = blockString('{', '}', program);
    ASSERT_EQ((Items{"filter f", "a -> b;   c -> \"d;e\"", "process p"}), blocks);
    const Items statements = listString(';', *std::next(blocks.begin()));
    ASSERT_EQ((Items{"a -> b", "c -> \"d;e\""}), statements);
    EXPECT_EQ(Halves("c", "\"d;e\""), splitString("->", statements.back()));
    EXPECT_EQ((Pieces{"filter", "f"}), splitSpace(blocks.front()));
}
