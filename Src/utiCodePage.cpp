// utiCodePage.cpp: ISO 8859 text in the terminal's code page. The two tables are made of where they
// differ from the identity.
#include "Src/assertions.h"

#include <array>
#include <cstring>

namespace {

constexpr uti::Assertions<"Src/utiCodePage"> asserts;

using Table = std::array<char, 256>;

constexpr Table makeTable() {
    Table table{};
    for (unsigned byte = 0; byte < table.size(); ++byte)
        table[byte] = static_cast<char>(byte < 0x20 ? 0x20 : byte);
    for (const unsigned byte : {0x81u, 0x8Du, 0x8Fu, 0x90u, 0x9Du})
        table[byte] = ' ';
    return table;
}

constexpr Table otherTable = [] {
    Table table = makeTable();
    table[0x7F] = ' ';
    return table;
}();

// The letters of ISO 8859-5 at their Windows-1251 positions.
constexpr Table cyrillicTable = [] {
    Table table = makeTable();
    for (unsigned byte = 0xB0; byte <= 0xEF; ++byte)
        table[byte] = static_cast<char>(byte + 0x10);
    table[0xA1] = '\xA8';
    table[0xF1] = '\xB8';
    return table;
}();

} // namespace

char *ISO8859ToOEM(uint32_t codePage, const char *source, char *destination) {
    if (!source || !destination)
        return asserts.fail(destination);
    const Table &table = codePage == 5 ? cyrillicTable : otherTable;
    const std::size_t length = std::strlen(source);
    for (std::size_t i = 0; i < length; ++i)
        destination[i] = table[static_cast<unsigned char>(source[i])];
    return destination;
}
