/// Text, encodings, dates, errors and the string table.
#include "errorOf.h"
#include "resources/stringTable.h"
#include "text/dates.h"
#include "text/encodings.h"
#include "text/NumberGrouping.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <clocale>
#include <cmath>
#include <functional>
#include <locale>

namespace qel
{
namespace
{

TEST(LowerCase, EachUnit_IsTheSimpleOne)
{
    const TextView myUnits = u"AZ@[zÑ×ßĀāİŸǄǅΣЀႠᎠᲐẞⒶＡῼϴ\u2126\u212A\u212B";
    const TextView myLower = u"az@[zñ×ßāāiÿǆǆσѐⴀꭰაßⓐａῳθωkå";
    EXPECT_EQ(LowerCase(myUnits), myLower);
    EXPECT_TRUE(EqualInLowerCase(myUnits, myLower));
    EXPECT_FALSE(EqualInLowerCase(u"árbol", u"arbol"));
    EXPECT_FALSE(EqualInLowerCase(u"árbol", u"árbole"));
}

TEST(LowerCase, EveryUnit_StaysOnceLoweredAndSurrogatesStay)
{
    for (uint32_t u = 0; u <= 0xFFFF; ++u)
    {
        const char16_t myOne = LowerCase(static_cast<char16_t>(u));
        EXPECT_EQ(LowerCase(myOne), myOne) << std::hex << u;
        EXPECT_TRUE(u < 0xD800 || u > 0xDFFF || u == myOne) << std::hex << u;
    }
}

TEST(Text, TrimBlanks_BlankAlone)
{
    EXPECT_EQ(TrimBlanks(u"  a b "), u"a b");
    EXPECT_EQ(TrimBlanks(u" \t\u00A0 "), u"\t\u00A0");
}

TEST(Text, ReplaceAll_ReplacementIsNotSearched)
{
    EXPECT_EQ(ReplaceAll(u"aaa", u"aa", u"a"), u"aa");
    EXPECT_EQ(ReplaceAll(u"\n\n", u"\n", u"\r\n"), u"\r\n\r\n");
    EXPECT_EQ(ReplaceAll(u"abc", u"", u"x"), u"abc");
}

TEST(Text, Find_StartsAtThePosition)
{
    const TextView myText = u"a<b<c";
    EXPECT_EQ(Find(myText, u'<', 0), 1U);
    EXPECT_EQ(Find(myText, u'<', 1), 1U);
    EXPECT_EQ(Find(myText, u'<', 2), 3U);
    EXPECT_EQ(Find(myText, u'<', 4), Text::npos);
    EXPECT_EQ(Find(myText, u'c', 4), 4U);
    EXPECT_EQ(Find(myText, u'c', 5), Text::npos) << "at the end";
    EXPECT_EQ(Find(myText, u'c', Text::npos), Text::npos) << "after the end";
    EXPECT_EQ(Find(u"\x8041", u'A', 0), Text::npos) << "a unit with the same low byte";
}

/// A locale whose decimal separator is a comma.
struct CommaNumbers : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
};

/// Runs the checks in the classic locale, then in one with a comma.
void InEachLocale(const std::function<void()>& myChecks)
{
    myChecks();
    std::locale::global(std::locale(std::locale(), new CommaNumbers));
    std::setlocale(LC_ALL, "es_ES.UTF-8");
    {
        SCOPED_TRACE("with a decimal comma");
        myChecks();
    }
    std::locale::global(std::locale::classic());
}

TEST(Number, NumericPrefix_LongestNumberInAnyLocale)
{
    const std::pair<TextView, double> myCases[] = {
        {u"", 0},        {u"38353x", 38353}, {u"  +7", 7},        {u"-1.25abc", -1.25}, {u".5", 0.5},    {u"5.", 5},
        {u"1.5.5", 1.5}, {u"1,5", 1},        {u"12.345", 12.345}, {u"--1", 0},          {u"+-1", 0},     {u".", 0},
        {u"-", 0},       {u"e5", 0},         {u"1e3", 1000},      {u"1E+2z", 100},      {u"25e-1", 2.5}, {u"1e", 1},
        {u"1e+", 1},     {u"inf", 0},        {u"-INFINITY", 0},   {u"nan", 0},          {u"0x1F", 0},    {u"1e-999", 0},
        {u"0e999", 0},   {u"x1", 0},         {u"\u0661", 0},      {u"0.00001e6", 10},   {u"00012", 12},
    };
    InEachLocale(
        [&]
        {
            for (const auto& [myText, myNumber] : myCases)
            {
                EXPECT_EQ(NumericPrefix(myText), myNumber) << ToUtf8(myText);
            }
            EXPECT_EQ(NumericPrefix(u"0." + Text(400, u'0') + u"1"), 0);
            EXPECT_EQ(NumericPrefix(u"0." + Text(1500, u'0') + u"1e1150"), 0);
            for (const Text& myText : {Text(u"1e999"), Text(u"-1e309"), Text(400, u'9'), Text(u"0.0001e999")})
            {
                EXPECT_EQ(ErrorOf([&] { NumericPrefix(myText); }), ErrorNumber::Overflow) << ToUtf8(myText);
            }
        });
}

TEST(Number, NumberText_ShortestInAnyLocale)
{
    InEachLocale(
        []
        {
            EXPECT_EQ(NumberText(int64_t{INT64_MIN}), u"-9223372036854775808");
            EXPECT_EQ(NumberText(120.0F), u"120");
            EXPECT_EQ(NumberText(0.1F), u"0.1");
            EXPECT_EQ(NumberText(16777216.0F), u"16777216");
        });
}

TEST(Number, GroupedNumberText_SeparatesGroupsOfTheirSizes)
{
    const std::tuple<int64_t, std::vector<uint8_t>, TextView> myCases[] = {
        {999, {3}, u"999"},
        {1000, {3}, u"1.000"},
        {-999, {3}, u"-999"},
        {-1000, {3}, u"-1.000"},
        {123456, {3}, u"123.456"},
        {-1234567, {3}, u"-1.234.567"},
        {12345678, {}, u"12345678"},
        {12345678, {3, 2}, u"1.23.45.678"},
        {12345678, {3, 0}, u"12345.678"},
    };
    for (const auto& [myNumber, mySizes, myText] : myCases)
    {
        EXPECT_EQ(GroupedNumberText(myNumber, {u".", mySizes}), myText);
    }
}

TEST(RoundToWhole, Half_GoesToTheEvenNeighbourInAnyRoundingMode)
{
    const std::pair<double, int32_t> myCases[] = {
        {0.5, 0},  {1.5, 2},   {2.5, 2},    {38352.5, 38352}, {0.49999999999999994, 0},  {0.51, 1},
        {-0.5, 0}, {-1.5, -2}, {-0.51, -1}, {38353.5, 38354}, {2147483647.4, INT32_MAX}, {-2147483648.5, INT32_MIN},
    };
    for (const int myMode : {FE_UPWARD, FE_DOWNWARD, FE_TONEAREST})
    {
        std::fesetround(myMode);
        for (const auto& [myNumber, myWhole] : myCases)
        {
            EXPECT_EQ(RoundToWhole(myNumber), myWhole) << myNumber;
            EXPECT_EQ(DateIsSet(myNumber), myWhole != 0) << myNumber;
        }
    }
    EXPECT_EQ(ErrorOf([&] { RoundToWhole(2147483647.5); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([&] { RoundToWhole(std::nan("")); }), ErrorNumber::Overflow);
}

TEST(FromUtf8, Broken_IsReplacedByteByByte)
{
    for (const std::string_view myBroken : {"\xC0\x80", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
                                            "\xF4\x90\x80\x80", "\xE2\x82", "\xC3", "\x80\xFF", "\xF8\x88\x80\x80\x80"})
    {
        EXPECT_EQ(FromUtf8("a" + std::string(myBroken) + "z"), u"a" + Text(myBroken.size(), 0xFFFD) + u"z");
        EXPECT_EQ(FromUtf8Exactly(myBroken), std::nullopt);
        EXPECT_FALSE(IsUtf8("a" + std::string(myBroken)));
    }
}

TEST(FromUtf8, EveryLength_ComesBack)
{
    const std::pair<TextView, std::string_view> myCases[] = {
        {u"", ""},
        {u"a\x7F\x80\x7F", "a\x7F\xC2\x80\x7F"},
        {u"ñ€", "\xC3\xB1\xE2\x82\xAC"},
        {u"\uFEFF", "\xEF\xBB\xBF"},
        {u"\U0001F600\U0010FFFF", "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"},
    };
    for (const auto& [myText, myBytes] : myCases)
    {
        SCOPED_TRACE(myBytes);
        EXPECT_TRUE(IsUtf8(myBytes));
        EXPECT_EQ(FromUtf8Exactly(myBytes), myText);
        EXPECT_EQ(ToUtf8Exactly(myText), myBytes);
        EXPECT_EQ(ToUtf8(myText), myBytes);
    }
    // The first and the last character of each length, and those beside the surrogates.
    const std::string myBounds = "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80";
    EXPECT_EQ(FromUtf8Exactly(myBounds), u"\x7F\x80\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000");
    EXPECT_EQ(ToUtf8(u"\x7F\x80\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000"), myBounds);
}

TEST(ToUtf8, HalfAPair_IsReplaced)
{
    EXPECT_EQ(ToUtf8(Text{0xDE00, 0xD83D, 0xD83D, 0xDE00, 0xD83D}),
              "\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8Exactly(Text{u'x', 0xD83D}), std::nullopt);
    EXPECT_EQ(ToUtf8Exactly(Text{0xDE00, u'x'}), std::nullopt);
}

TEST(FromWindows1252, EveryByte_IsOneCharacterAndComesBack)
{
    // The bytes 0x80 to 0x9F, five of which are not assigned.
    const TextView myHighControls = u"€\x81‚ƒ„…†‡ˆ‰Š‹Œ\x8DŽ\x8F\x90‘’“”•–—˜™š›œ\x9DžŸ";
    for (size_t b = 0; b < 256; ++b)
    {
        const std::string myByte(1, static_cast<char>(b));
        const Text myCharacter(1, b < 0x80 || b > 0x9F ? static_cast<char16_t>(b) : myHighControls[b - 0x80]);
        EXPECT_EQ(FromWindows1252(myByte), myCharacter) << b;
        EXPECT_EQ(ToWindows1252(myCharacter), myByte) << b;
    }
}

TEST(ToWindows1252, CharacterOutsideTheCodePage_IsRefused)
{
    for (const Text& myOther : {Text{0x80}, Text{0x9F}, Text(u"Ā"), Text(u"a\U0001F600")})
    {
        EXPECT_EQ(ToWindows1252(myOther), std::nullopt) << ToUtf8(myOther);
    }
}

/// The texts of the dialog. qelhost check has those of the page and of the members.
TEST(StringTable, LoadResString_EveryTextOfTheDialog)
{
    const std::pair<int32_t, TextView> myTexts[] = {
        {600, u"Cargar motivo de animación"},
        {610, u"Todos los formatos de imágenes|*.jpg;*.gif|archivos GIF (*.gif)|*.gif| archivos JPEG (*.jpg)|*.jpg"},
        {800, u"Haga clic aquí para importar otra imagen en formato JPEG o GIF como motivo."},
        {801, u"Ninguna imagen seleccionada. Haga clic aquí para importar una imagen en formato JPEG o GIF como "
              u"motivo."},
        {810, u"Haga clic aquí para importar otro clip en formato MIDI como sonido de fondo."},
        {811, u"Ningún sonido de fondo seleccionado. Haga clic aquí para importar un clip en formato MIDI como sonido "
              u"de fondo."},
        {820, u"Por favor, importe una imagen o seleccione una de la librería."},
        {840, u"El gráfico importado es demasiado grande para poder utilizarlo como motivo de animación. ¿Desea "
              u"disminuir el tamaño del gráfico?"},
        {850, u"El final del periodo de tiempo de reproducción aparece antes del inicio."},
        {870, u"La fecha %1 del periodo de reproducción no se puede mostrar en el cuadro de diálogo. Elimine el "
              u"plug-in de la página e insértelo de nuevo."},
    };
    for (const auto& [myNumber, myText] : myTexts)
    {
        EXPECT_EQ(LoadResString(myNumber), myText);
    }
    EXPECT_EQ(ErrorOf([&] { LoadResString(523); }), ErrorNumber::InvalidArgument);
}

} // namespace
} // namespace qel
