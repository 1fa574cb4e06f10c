// toml_reader.h: TOML tables read key by key with their types checked, so that every finding points
// at its place and no key goes unnoticed. Stands on toml++ and the diagnostics.
#pragma once

#include "common/diagnostics.h"

// toml++ asserts, and in a release build assumes, what it then checks once more and reports: a key
// that begins with a wrong character. The assertion must neither stop the program nor be believed.
#undef NDEBUG
#define TOML_ASSERT(condition) static_assert(true)
#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

using TomlText = toml::value<std::string>;
using TomlInteger = toml::value<int64_t>;

Place begin(const toml::node &node);
Place begin(const toml::key &key);
Place end(const toml::node &node);

// Parses a text; a mistake in it is reported and gives nothing.
std::optional<toml::table> parseToml(Diagnostics &diagnostics);

struct TomlEntry {
    const toml::key *key;
    const toml::node *node;
};

// The entries of a table as they stand in the file; toml++ keeps them sorted by key.
std::vector<TomlEntry> entriesInOrder(const toml::table &table);

// Reports a value that is of another type than `name` asks for.
void reportType(const toml::node &node, std::string_view name, toml::node_type wanted,
                Diagnostics &diagnostics);

// The node as the type asked for, or null and an error.
template <class Type>
const Type *expect(const toml::node &node, std::string_view name, Diagnostics &diagnostics) {
    const Type *found = node.as<Type>();
    if (!found)
        reportType(node, name, Type{}.type(), diagnostics);
    return found;
}

// "; did you mean ..." with the known word that is nearest to a wrong one; empty when none is near.
std::string hint(std::string_view wrong, std::span<const std::string_view> known);

void reportUnknownKey(const toml::key &key, std::span<const std::string_view> known,
                      Diagnostics &diagnostics);

// A number of 0 to `most`, or nothing and an error.
std::optional<uint16_t> expectNumber(const toml::node &node, std::string_view name, uint16_t most,
                                     Diagnostics &diagnostics);

// Takes the known keys out of a table, then reports the others.
class TableReader {
public:
    TableReader(const toml::table &table, Diagnostics &diagnostics)
        : table_(table), diagnostics_(diagnostics) {}

    // The value of `key`, or null when it is missing.
    const toml::node *find(std::string_view key);

    // The value of `key`, or null when it is missing or of another type.
    template <class Type>
    const Type *find(std::string_view key) {
        const toml::node *node = find(key);
        return node ? expect<Type>(*node, key, diagnostics_) : nullptr;
    }

    std::optional<uint16_t> findNumber(std::string_view key, uint16_t most);

    // Reports each key that was not asked for, with the known one nearest to it.
    void reportUnknownKeys() const;

private:
    const toml::table &table_;
    Diagnostics &diagnostics_;
    std::vector<std::string_view> known_;
};

} // namespace uti::tool
