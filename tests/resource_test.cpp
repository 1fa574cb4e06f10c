// Resource files, modules, languages and strings: what is found, what is kept, what is refused.
#include "tests/support.h"

using namespace support;
using fake::Call;
using fake::Persistence;

namespace {

class Resources : public support::Terminal {
protected:
    Resources() {
        terminal.environment["default_lang"] = "EN";
        terminal.files["m.res"] = module;
    }

    // A module with sections 0 and 1 in English and Russian, the others in neither.
    const std::string module =
        resourceFile(7, {{0, {{"en"s, 1, {"zero", "Hello"}}, {"ru\0"s, 2, {"nol", "Privet"}}}},
                         {1,
                          {{"en",
                            1,
                            {std::string(32, 's'), std::string(33, 'l'), std::string(2047, 'x'),
                             std::string(2048, 'y'), "", "\0bin"s, "x"}},
                           {"ru", 2, {"kratko"}}}},
                         {2, {{"fr", 9, {"deux"}}}},
                         {3, {{"fr", 9, {"trois"}}}},
                         {4, {{"fr", 9, {"bonjour"}}, {"de", 8, {"tag"}}}},
                         {5, {{"fr", 9, {"cinq"}}}}});

    int reads() {
        int count = 0;
        for (std::size_t at = 0; (at = terminal.calls.find("open", at)) != std::string::npos; ++at)
            ++count;
        return count;
    }
};

TEST_F(Resources, DefaultLanguage) {
    for (const auto &[value, expected] :
         {std::pair("EN", "en"), {"en", "en"}, {"eng", "ru"}, {"e", "ru"}, {"", "ru"}}) {
        SCOPED_TRACE(value);
        forgetResources();
        terminal.environment["default_lang"] = value;
        EXPECT_EQ(Resource_Initialize("m"), 0);
        EXPECT_STREQ(Resource_GetCurrentLanguage(), expected);
    }
}

TEST_F(Resources, ModulesLoadOnceAndFailuresChangeNothing) {
    terminal.files["exactlytwelv.res"] = module;
    terminal.files["cut.res"] = module.substr(0, 60);
    EXPECT_EQ(Resource_Initialize("m"), 0);
    const ResourceModule *loaded = CurrentModule;
    for (const auto &[name, expected] : {std::pair<const char *, int>("exactlythirte", -3055),
                                         {nullptr, -3055},
                                         {"none", -3052},
                                         {"cut", -3052},
                                         {"", -3052}}) {
        SCOPED_TRACE(name ? name : "null");
        EXPECT_EQ(Resource_Initialize(name), expected);
        EXPECT_EQ(CurrentModule, loaded);
        EXPECT_STREQ(CurrentModuleName, "m");
        EXPECT_EQ(ModuleList->GetCount(ModuleList), 1);
        EXPECT_EQ(terminal.openFiles, 1);
    }
    EXPECT_EQ(Resource_Initialize("exactlytwelv"), 0);
    EXPECT_STREQ(CurrentModuleName, "exactlytwelv");
    const std::string calls = terminal.calls;
    EXPECT_EQ(Resource_Initialize("m"), 0);
    EXPECT_EQ(terminal.calls, calls) << "a loaded module stays open";
    EXPECT_STREQ(CurrentModuleName, "m");
    EXPECT_EQ(Resource_IsValid("m", 7), 0);
    EXPECT_EQ(Resource_IsValid("m", 8), -3054);
    EXPECT_EQ(Resource_IsValid("none", 7), -3052);

    Resource_Close("none");
    Resource_GetString("m", 0x1001);
    EXPECT_EQ(Resource_LoadInfo("m"), 0) << "once more, with its own copies of strings";
    Resource_Close(CurrentModule->name);
    EXPECT_EQ(ModuleList->GetCount(ModuleList), 1);
    EXPECT_EQ(CurrentModule, nullptr);
    EXPECT_STREQ(CurrentModuleName, "");
}

TEST_F(Resources, RefusedNamesPrepareNothing) {
    Resource_SetLanguage("fr");
    for (const char *name : {static_cast<const char *>(nullptr), "thirteenchars"}) {
        EXPECT_EQ(Resource_GetString(name, 1), ResourceEmptyStr);
        Resource_Release(name, 1);
        Resource_ReleaseAll(name);
        EXPECT_EQ(Resource_LoadInfo(name), -3052);
        Resource_Close(name);
    }
    EXPECT_EQ(ModuleList, nullptr);
    EXPECT_STREQ(CurrentLanguage, "fr");
}

TEST_F(Resources, IdsPastTheEndOfATableGiveNothing) {
    // Three entries, the third empty, then the bytes of a string that read as entries.
    const std::string entries = number(2, 2) + number(4, 2) + number(20, 2) + number(1, 2);
    terminal.files["t.res"] = resourceFile(1, {{0, {{"en", 0, {entries, "y", ""}}}}});
    EXPECT_EQ(std::string(Resource_GetString("t", 0), 8), entries);
    EXPECT_STREQ(Resource_GetString("t", 2), "");
    terminal.calls.clear();
    EXPECT_EQ(Resource_GetString("t", 3), ResourceEmptyStr) << "an offset inside the index";
    EXPECT_STREQ(Resource_GetString("t", 4), "y") << "one that the format does not rule out";
}

TEST_F(Resources, LanguagesOfASection) {
    ResourceLanguageInfo infos[3];
    EXPECT_EQ(Resource_GetLanguages("m", 0, infos, 2), 2);
    EXPECT_EQ(toHex({reinterpret_cast<char *>(infos), 12}),
              toHex(hex("656E00000100 727500000200")));
    EXPECT_EQ(Resource_GetLanguages("m", 0, infos, 1), -3051);
    EXPECT_EQ(Resource_GetLanguages("m", 0, nullptr, 2), -3051);
    for (const uint32_t section : {6u, 15u, 1000u})
        EXPECT_EQ(Resource_GetLanguages("m", section, infos, 3), 0);
    EXPECT_EQ(Resource_GetLanguages("none", 0, infos, 3), -3052);
}

TEST_F(Resources, StringsWithZerosAndLanguagesOfAnyLength) {
    EXPECT_EQ(Resource_Initialize("m"), 0);
    Resource_SetLanguage("en");
    EXPECT_EQ(std::string(Resource_GetString("m", 0x1005), 4), "\0bin"s);
    EXPECT_STREQ(Resource_GetString("m", 0x1006), "x") << "in the slot that looks free";
    Resource_SetLanguage(Resource_GetCurrentLanguage());
    EXPECT_STREQ(CurrentLanguage, "en");
    Resource_SetLanguage(ExactBlock("e\0"s).data());
    EXPECT_STREQ(CurrentLanguage, "e");
    Resource_SetLanguage(nullptr);

    EXPECT_EQ(Resource_GetString("none", 1), ResourceEmptyStr);
    EXPECT_EQ(Resource_GetStringEx("none", "en", 1), nullptr);
}

TEST_F(Resources, ForeignLanguageLeavesTheCurrentOne) {
    EXPECT_STREQ(Resource_GetStringEx("m", "ru", 1), "Privet") << "the very first call";
    EXPECT_STREQ(CurrentLanguage, "en");
    EXPECT_STREQ(Resource_GetStringEx("m", nullptr, 1), "Hello");
    EXPECT_STREQ(Resource_GetStringEx("m", "fr", 1), "");
    EXPECT_STREQ(Resource_GetString("m", 1), "Hello");
    EXPECT_STREQ(resource_FindStoredString("m", "ru", 1), "Privet");
    EXPECT_STREQ(resource_FindStoredString("m", "", 1), "Hello") << "the default language";
    EXPECT_EQ(resource_FindStoredString("m", "ru", 2), nullptr);
    EXPECT_EQ(resource_FindStoredString("a name too long", "ru", 1), nullptr);
}

TEST_F(Resources, ShortStringsTakeSlotsAndLongOnesTheList) {
    std::vector<std::string> texts(22);
    for (std::size_t i = 0; i < texts.size(); ++i)
        texts[i] = "text " + std::to_string(i);
    terminal.files["s.res"] = resourceFile(1, {{0, {{"en", 0, texts}}}});
    const char *first = nullptr;
    for (uint32_t id = 0; id < 20; ++id) {
        const char *text = Resource_GetString("s", id);
        EXPECT_EQ(text, texts[id]);
        first = first ? first : text;
    }
    EXPECT_EQ(Resource_GetString("s", 20), ResourceEmptyStr) << "all 20 slots are taken";
    EXPECT_NE(Resource_GetString("s", 0), first) << "the stored copy";
    Resource_Release("s", 0);
    EXPECT_EQ(Resource_GetString("s", 20), texts[20]) << "id 0 made room";
    EXPECT_EQ(Resource_GetString("s", 0), texts[0]) << "its stored copy stays";
    Resource_ReleaseAll("s");
    EXPECT_EQ(Resource_GetString("s", 21), texts[21]);

    const auto isSmall = [&](uint32_t id) {
        const char *text = Resource_GetString("m", id);
        const auto *begin = reinterpret_cast<const char *>(CurrentModule);
        return text > begin && text < begin + sizeof *CurrentModule;
    };
    EXPECT_TRUE(isSmall(0x1000)) << "32 bytes";
    EXPECT_FALSE(isSmall(0x1001)) << "33 bytes";
    EXPECT_NE(CurrentModule->largeStrings, nullptr);
    Resource_Release("m", 0x71001);
    EXPECT_EQ(CurrentModule->largeStrings, nullptr) << "the last one out destroys the list";

    const char *stored = Resource_GetString("m", 0x1002), *again = Resource_GetString("m", 0x1002);
    EXPECT_EQ(std::string(again), std::string(2047, 'x'));
    EXPECT_EQ(again, Resource_GetString("m", 0x1002)) << "2047 bytes are stored";
    EXPECT_NE(stored, again);
    stored = Resource_GetString("m", 0x1003);
    EXPECT_NE(stored, Resource_GetString("m", 0x1003)) << "2048 bytes are read each time";
    EXPECT_EQ(CurrentModule->largeStrings->GetCount(CurrentModule->largeStrings), 3);
}

TEST_F(Resources, StoreRefusesWhatItCannotKeep) {
    EXPECT_EQ(resource_StoreString("m", 5, "text", 4), 0) << "no language yet";
    ASSERT_EQ(Resource_Initialize("m"), 0);
    EXPECT_EQ(resource_StoreString(nullptr, 5, "text", 4), 0);
    EXPECT_EQ(resource_StoreString("m", 5, nullptr, 4), 0);
    EXPECT_EQ(resource_StoreString("thirteenchars", 5, "text", 4), 0);
    EXPECT_EQ(resource_StoreString("m", 5, std::string(2048, 'x').c_str(), 2048), 0);
    EXPECT_EQ(resource_StoreString("m", 5, ExactBlock("text").data(), 4), 1);
    EXPECT_STREQ(resource_FindStoredString("m", "en", 5), "text");
}

TEST_F(Resources, ExternalModulesOverride) {
    terminal.files["m_ext.res"] = resourceFile(1, {{0, {{"en", 0, {"", "Override"}}}}});
    terminal.environment["EXTRES"] = "0";
    EXPECT_STREQ(Resource_GetString("m", 1), "Hello");
    forgetResources();
    terminal.environment["EXTRES"] = "1x";
    EXPECT_STREQ(Resource_GetString("m", 1), "Override") << "the very first call";
    EXPECT_STREQ(Resource_GetString("m", 0), "zero") << "an empty one falls back";
    EXPECT_STREQ(resource_GetString("m", 1), "Hello");
    EXPECT_EQ(ModuleList->GetCount(ModuleList), 2);
    Resource_Close("m");
    EXPECT_EQ(ModuleList->GetCount(ModuleList), 0);
    EXPECT_EQ(ResourceStorageList->GetCount(ResourceStorageList), 0);

    EXPECT_STREQ(Resource_GetString("m", 0x1001), std::string(33, 'l').c_str());
    EXPECT_STREQ(CurrentModuleName, "m");
    const ResourceModule *plain = CurrentModule;
    EXPECT_STREQ(Resource_GetString(CurrentModuleName, 0), "zero");
    Resource_Release(CurrentModuleName, 0x1001);
    EXPECT_EQ(plain->largeStrings, nullptr);
    Resource_ReleaseAll(CurrentModuleName);
    EXPECT_EQ(plain->smallStrings[0].text[0], 0);
    EXPECT_EQ(CurrentModule, plain) << "asked by its own name, which changes on the way";
    Resource_Close("m");

    terminal.files.erase("m_ext.res");
    terminal.files["longestname2.res"] = module;
    EXPECT_STREQ(Resource_GetString("m", 1), "Hello");
    EXPECT_STREQ(Resource_GetString("longestname2", 1), "Hello");
}

TEST_F(Resources, HostileFilesGiveAnErrorOrAString) {
    const auto fetchAll = [&](std::string bytes) {
        forgetResources();
        terminal.files["m.res"] = std::move(bytes);
        for (const uint32_t id : {0u, 1u, 0xFFFu, 0x1001u, 0x1003u, 0x4000u, 0x5000u}) {
            const char *text = Resource_GetString("m", id);
            ASSERT_NE(text, nullptr);
            EXPECT_LE(std::strlen(text), 65535u);
            Resource_Release("m", id);
        }
        ResourceLanguageInfo infos[64];
        Resource_GetLanguages("m", 0, infos, 64);
    };
    const std::string other[] = {
        resourceFile(0, {}),
        resourceFile(1, {{5, {{"en", 0, {"a"}}, {"en", 0, {"b"}}}}, {5, {{"ru", 0, {}}}}}),
    };
    for (const std::string &file : {module.substr(0, 700), other[0], other[1]})
        forEachTruncation(file, [&](const ExactBlock &block) {
            fetchAll(std::string(block.data(), block.size()));
        });
    for (std::size_t at = 0; at < 420; ++at) {
        for (const int change : {0x01, 0x80, 0xFF}) {
            std::string changed = module;
            changed[at] = static_cast<char>(changed[at] ^ change);
            fetchAll(changed);
        }
    }
}

} // namespace
