// dialog_run.cpp: the operation of each kind of dialog, called as an application calls it.
#include "tools/dialog_run.h"

#include "Src/utiDialogsRecords.h"
#include "host/terminal/clock.h"

#include <bit>
#include <memory>

namespace uti::tool {

namespace {

// Looks at the first form that runs, and has every one cancelled.
class Onlooker final : public host::Face {
public:
    explicit Onlooker(std::function<void(const host::Form &)> look) : look_(std::move(look)) {}

    void show(const host::Surface &, const host::Rect &) override {}
    std::optional<host::Event> next(uint32_t milliseconds) override {
        const host::Form *form = host::display().running();
        if (!form) {
            host::pass(milliseconds);
            return std::nullopt;
        }
        if (const auto look = std::exchange(look_, nullptr))
            look(*form);
        return host::Event{.kind = host::Event::Kind::close};
    }

private:
    std::function<void(const host::Form &)> look_;
};

const char *orNull(const std::optional<std::string> &text) {
    return text ? text->c_str() : nullptr;
}

// The first or second of a confirmation's texts or suffixes.
const char *orNull(const std::vector<std::string> &texts, std::size_t at) {
    return at < texts.size() ? texts[at].c_str() : nullptr;
}

} // namespace

int32_t runDialog(const char *module, uint16_t id, const ResolvedTexts &texts) {
    std::vector<LabelValue> labels;
    for (const auto &[name, text] : texts.labels)
        labels.push_back({name.c_str(), text.c_str()});
    labels.push_back({});
    DialogRequest request{};
    request.resourceId = id;
    request.module = module;
    request.caption = orNull(texts.caption);
    request.text = orNull(texts.text);
    request.imageName = texts.image.empty() ? nullptr : texts.image.c_str();
    request.labelValues = labels.data();
    request.timeout = 24 * 60 * 60 * 1000; // without one a message would not wait at all

    switch (currentDialogType) {
    case DIALOG_MESSAGE:
        return DialogMessage_Show(&request, SHOW_UNLIMITED);
    case DIALOG_CONFIRMATION: {
        const ConfirmationRequest question{request, orNull(texts.buttons, 1),
                                           orNull(texts.buttons, 0)};
        return texts.suffixes.size() == 2
                   ? DialogSelect_DoModal_IG(&question, orNull(texts.suffixes, 0),
                                             orNull(texts.suffixes, 1))
                   : DialogConfirmation_DoModal(&question);
    }
    case DIALOG_EDIT: {
        EditRequest edit{};
        edit.dialog = request;
        char buffer[DIALOG_LONG_TEXT + 1] = "";
        return DialogEdit_DoModal(&edit, buffer, sizeof buffer);
    }
    case DIALOG_LIST: {
        std::vector<ListItem> items(texts.items.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            items[i].word1 = std::bit_cast<uintptr_t>(texts.items[i].c_str());
        const ListRequest list{request, items.data(), static_cast<uint16_t>(items.size())};
        return DialogList_DoModal(&list);
    }
    default:
        return DialogSignature_DoModal(&request, "/dev/null");
    }
}

int32_t lookAtDialog(const char *module, uint16_t id, const ResolvedTexts &texts,
                     std::function<void(const host::Form &)> look) {
    host::useVirtualClock();
    host::display().useFace(std::make_unique<Onlooker>(std::move(look)));
    return runDialog(module, id, texts);
}

} // namespace uti::tool
