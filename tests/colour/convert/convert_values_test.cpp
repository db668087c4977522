// Conversions whose results are worked out by hand. They hold the library, and the model that the library is
// compared with over whole rows, to numbers that neither of them made.
#include "colour/convert/reference_convert.h"
#include "colour/palettes/reference_palettes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zkr::test {
namespace {

enum Table { NoTable, Levels };

struct Value {
    const char* what;
    int width;
    int sourceBits, sourceOrder, targetBits, targetOrder;
    Table table;
    const char* before; // the whole buffer, in hexadecimal
    const char* after;
    uint32_t flags = 0;
    int lowBit = -1;
    int highBit = -1;
};

constexpr uint32_t From = Z_CONVERT_SOURCE_WINDOW;
constexpr uint32_t To = Z_CONVERT_TARGET_WINDOW;

// Levels maps v to red 80, green the high byte of v, blue the low byte.
constexpr Value Values[] = {
    {"8-bit white widens to full 16 bits", 1, 0, 0, 16, 2, NoTable, "FF00", "FFFF"},
    {"(80 * 1000 - 80) / FF is 807", 2, 0, 0, 12, 2, NoTable, "FF8000", "FF7F80"},
    {"gray to four bits of a window", 1, 0, 0, 16, 2, NoTable, "FF00", "F000", To, 4, 7},
    {"white is 1F in each field", 1, 0, 0, 16, 0, NoTable, "FF00", "FF7F"},
    {"odd width keeps the other nibble", 1, 8, 0, 12, 2, NoTable, "FFAA", "FFAF"},
    {"index of the 3-bit palette", 1, 3, 0, 24, 0, NoTable, "800000", "FF0000"},
    {"black and white of 1 bit in 4 bits", 2, 1, 0, 4, 0, NoTable, "40", "0F"},

    {"low field is red in order 0", 1, 16, 0, 24, 0, NoTable, "1F0000", "FF0000"},
    {"high field is red in order 1", 1, 16, 1, 24, 0, NoTable, "007C00", "FF0000"},
    {"bit 15 is alpha of 32 bits", 1, 16, 0, 32, 0, NoTable, "00800000", "000000FF"},
    {"bit 15 is alpha of 64 bits", 1, 16, 0, 64, 0, NoTable, "0080000000000000", "000000000000FFFF"},
    {"fields change places, bit 15 stays", 1, 16, 0, 16, 1, NoTable, "1F80", "00FC"},
    {"8 value bits at the top of gray 16", 1, 16, 0, 16, 2, NoTable, "FF7F", "00FF"},
    {"8 value bits at the top of gray 12", 1, 16, 0, 12, 2, NoTable, "FF7F", "F07F"},

    {"weights 2, 5, 1", 1, 24, 0, 0, 0, NoTable, "102030", "1E2030"},
    {"weights 2, 5, 1, blue first", 1, 24, 1, 0, 0, NoTable, "102030", "222030"},
    {"new alpha is 0", 1, 24, 0, 32, 0, NoTable, "102030AA", "10203000"},
    {"alpha 7F is no alpha", 1, 32, 0, 16, 0, NoTable, "0000007F", "0000007F"},
    {"alpha 80 is alpha", 1, 32, 0, 16, 0, NoTable, "00000080", "00800080"},
    {"alpha widens", 1, 32, 0, 64, 1, NoTable, "1020308000000000", "3030202010108080"},
    {"alpha of words is no bit 15", 1, 64, 0, 16, 0, NoTable, "FFFFFFFFFFFFFFFF", "FF7FFFFFFFFFFFFF"},
    {"alpha narrows to its high byte", 1, 64, 0, 32, 1, NoTable, "0011002200331234", "3322113400331234"},
    {"high bytes make gray 8", 1, 48, 0, 0, 0, NoTable, "FF10FF20FF30", "1E10FF20FF30"},
    {"words make gray 16", 1, 48, 0, 16, 2, NoTable, "000100020103", "E00100020103"},
    {"words make gray 12", 1, 48, 0, 12, 2, NoTable, "000100020103", "1E0000020103"},
    {"words in a window", 1, 48, 0, 12, 2, NoTable, "FFFFFFFFFFFF", "FCF3FFFFFFFF", To, 2, 9},
    {"a window up to bit 15 is cut to 12", 1, 48, 0, 12, 2, NoTable, "FFFFFFFFFFFF", "F0FFFFFFFFFF", To, 4,
     -1},

    {"12 bits: the top 8", 1, 12, 2, 0, 0, NoTable, "BC0A", "AB0A"},
    {"12 bits: the second pixel", 2, 12, 2, 0, 0, NoTable, "00C0AB", "00ABAB"},
    {"12 bits: a window is stretched", 1, 12, 2, 0, 0, NoTable, "BC0A", "BB0A", From, 4, 7},
    {"12 bits: and in colour it is not", 1, 12, 2, 24, 0, NoTable, "BC0A00", "0B0B0B", From, 4, 7},
    {"12 bits: alpha stays", 1, 12, 2, 32, 0, NoTable, "BC0A7755", "ABABAB55"},
    {"12 bits: stretched to 16", 1, 12, 2, 16, 2, NoTable, "BC0A", "CAAB"},
    {"12 bits: stretched to 48", 1, 12, 2, 48, 0, NoTable, "BC0A00000000", "CAABCAABCAAB"},
    {"12 bits: into a window of 16", 1, 12, 2, 16, 2, NoTable, "BC0A", "C0AB", To, 4, 15},
    {"12 to 12: a source window is cut out", 1, 12, 2, 12, 2, Levels, "BC5A", "0B50", From, 4, 7},
    {"12 to 12: a target window", 1, 12, 2, 12, 2, NoTable, "BC0A", "A000", To, 4, 7},

    {"16 to 12 bits", 1, 16, 2, 12, 2, NoTable, "CDAB", "BCAA"},
    {"16 to 12: green and blue exchanged", 1, 16, 2, 12, 2, Levels, "CDAB", "6AAB"},
    {"16 to 12: window", 1, 16, 2, 12, 2, NoTable, "CD0B", "BB0B", From, 8, 11},
    {"16 to 12: window and table", 1, 16, 2, 12, 2, Levels, "CD0B", "1102", From, 8, 11},
    {"16 to 12: target window", 1, 16, 2, 12, 2, NoTable, "CDAB", "ACA2", To, 2, 9},
    {"16 to 12: target window and table", 1, 16, 2, 12, 2, Levels, "CDAB", "94A2", To, 2, 9},
    {"16 to 16: table", 1, 16, 2, 16, 2, Levels, "CDAB", "00A5"},
    {"16 to 16: window", 1, 16, 2, 16, 2, NoTable, "A000", "AAAA", From, 4, 7},
    {"16 to 16: window and table", 1, 16, 2, 16, 2, Levels, "0B00", "2121", From, 0, 3},
    {"16 to 16: target window", 1, 16, 2, 16, 2, NoTable, "CDAB", "B00A", To, 4, 11},
    {"16 to 16: target window and table", 1, 16, 2, 16, 2, Levels, "CDAB", "0900", To, 0, 3},
    {"16 to 8: table at the word", 1, 16, 2, 0, 0, Levels, "05AB", "8CAB"},
    {"16 to 8 gray: table at the low byte", 1, 16, 2, 0, 2, Levels, "05AB", "21AB"},
    {"16 to 1: split in the middle", 2, 16, 2, 1, 0, NoTable, "00800F7F", "80800F7F"},
};

std::vector<uint8_t> BytesOf(const std::string& hex) {
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < hex.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

TEST(ConvertValues, WorkedOutByHand) {
    std::vector<RGBQUAD> levels;
    for (unsigned v = 0; v < 65536; ++v)
        levels.push_back(EntryOf(0x80, v >> 8, v & 255));
    for (const Value& value : Values) {
        const Conversion conversion{value.sourceBits,
                                    value.targetBits,
                                    value.sourceOrder,
                                    value.targetOrder,
                                    value.table == Levels ? levels.data() : nullptr,
                                    nullptr,
                                    value.flags,
                                    value.lowBit,
                                    value.highBit};
        std::vector<uint8_t> row = BytesOf(value.before), model = row;
        EXPECT_EQ(Convert(row.data(), value.width, conversion), 1) << value.what;
        EXPECT_EQ(row, BytesOf(value.after)) << value.what;
        EXPECT_EQ(ReferenceConvert(model.data(), value.width, conversion), 1) << value.what;
        EXPECT_EQ(model, BytesOf(value.after)) << "the model: " << value.what;
    }
}

} // namespace
} // namespace zkr::test
