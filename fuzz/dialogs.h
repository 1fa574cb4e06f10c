// dialogs.h: dialogs that an input describes, and the application that shows them. The tables of
// the format say what a node may have, so that few descriptions are refused at their door.
#pragma once

#include "fuzz/harness.h"

#include "Src/utiDialogFormat.h"
#include "tests/state.h"
#include "tests/streams.h"

#include <vector>

namespace fuzz {

inline std::string describeValue(Input &in, const uti::dialog::Row &row) {
    using uti::dialog::Kind;
    namespace describe = support::describe;
    const char *const words[] = {"a", "b", "12x16", "dig24", "##.##", "x\\ny", "*", "tea.png"};
    switch (row.kind) {
    case Kind::byte:
    case Kind::wide:
    case Kind::key:
        return describe::byte(row.tag, in.oneIn(4) ? in.byte() : in.below(4));
    case Kind::word:
        return describe::word(row.tag, in.below(140));
    case Kind::dword:
        return describe::dword(row.tag, in.below(3000));
    case Kind::area: {
        const uint32_t left = in.below(260), top = in.below(340);
        const uint32_t width = in.below(260), height = in.below(340);
        return describe::area(left, top, left + width, top + height);
    }
    case Kind::colors:
        return describe::colors({in.number(), in.number(), in.number()});
    default:
        return describe::text(row.tag, in.oneIn(4) ? in.text(row.limit) : in.pick(words));
    }
}

inline std::string describeNode(Input &in, const uti::dialog::Node &node) {
    std::string children;
    for (const uti::dialog::Field &field : node.fields)
        if (in.oneIn(3) || field.row.tag == uti::dialog::tagArea)
            children += describeValue(in, field.row);
    if (node.tag == uti::dialog::tagMenu)
        for (uint32_t elements = in.below(4); elements > 0; --elements)
            children += describeNode(in, uti::dialog::menuElement);
    return support::describe::group(node.tag, children);
}

// A description of a type, now and then with a byte that is wrong.
inline std::string describeDialog(Input &in, uint32_t type) {
    std::string nodes = describeNode(in, uti::dialog::nodes[0]);
    // The control without which a dialog of the type is none.
    const int needed[] = {2, 4, 7, 6, 9};
    nodes += describeNode(in, uti::dialog::nodes[4]);
    nodes += describeNode(in, uti::dialog::nodes[needed[type % 5]]);
    for (uint32_t controls = in.below(12); controls > 0; --controls)
        nodes += describeNode(in, in.pick(uti::dialog::nodes));
    std::string text = support::describe::dialog(type, nodes);
    in.damage(text, in.oneIn(8));
    return text;
}

// The application: what its functions are to do, and its texts, which live for the call alone.
struct Application {
    uint32_t breakAt, refreshAt, keyAt;
    int32_t keyResult;
    std::string typed;
    LabelValue labels[3];
};
inline Application application;

inline int32_t isDue(uint32_t &count) {
    return count > 0 && --count == 0;
}
inline int32_t refresh(const LabelValue **labels) {
    *labels = application.labels;
    return isDue(application.refreshAt);
}
inline int32_t takeTyped(int32_t, char *text, int32_t) {
    text[application.typed.copy(text, 128)] = 0;
    return !application.typed.empty();
}

// Shows a dialog of the module "m", string 1, as the input wants it, and returns its result.
// Whatever the request says, the form ends by a time-out.
inline int32_t showDialog(Input &in, uint32_t type) {
    std::vector<support::ExactBlock> texts;
    const auto text = [&](uint32_t most) -> const char * {
        return in.oneIn(3) ? nullptr : texts.emplace_back(in.text(most) + '\0').data();
    };
    application = {in.below(9),
                   in.below(9),
                   in.below(9),
                   in.oneIn(2) ? -3202 : 0,
                   in.text(in.oneIn(8) ? 140 : 8),
                   {{"a", text(60)}, {"b", text(60)}, {}}};
    EditRequest edit{};
    DialogRequest &request = edit.dialog;
    request.resourceId = 1;
    request.module = "m";
    request.timeout = 500;
    request.caption = text(40);
    request.text = text(200);
    request.imageName = text(20);
    request.labelValues = in.oneIn(2) ? application.labels : nullptr;
    request.needToBreak = in.oneIn(2) ? +[] { return isDue(application.breakAt); } : nullptr;
    request.refresh = in.oneIn(2) ? refresh : nullptr;
    request.keyPostProcessing =
        in.oneIn(2) ? +[](uint8_t) { return isDue(application.keyAt) * application.keyResult; }
                    : nullptr;
    request.colors.passiveForeground.red = in.byte();
    const ConfirmationRequest confirmation{request, text(20), text(20)};
    const InputLimits limits{static_cast<uint16_t>(in.below(140)),
                             static_cast<uint16_t>(in.below(4)), in.below(5)};
    switch (type) {
    case DIALOG_MESSAGE:
        return DialogMessage_Show(&request, in.below(4));
    case DIALOG_LIST: {
        std::vector<ListItem> items(in.below(12));
        for (ListItem &item : items)
            item = {reinterpret_cast<uintptr_t>(text(30)), reinterpret_cast<uintptr_t>(text(9)),
                    in.byte(), 0, text(9)};
        const ListRequest list{request, items.data(), static_cast<uint16_t>(items.size())};
        return DialogList_DoModal(&list);
    }
    case DIALOG_CONFIRMATION: {
        if (in.oneIn(2))
            return DialogConfirmation_DoModal(&confirmation);
        const char *first = text(130), *second = text(130);
        return DialogSelect_DoModal_IG(&confirmation, first, second);
    }
    case DIALOG_SIGNATURE:
        return DialogSignature_DoModal(&request, "/dev/null");
    default:
        edit.radix = static_cast<uint8_t>(in.below(5));
        edit.option = static_cast<uint8_t>(in.below(2));
        edit.pattern = text(300);
        edit.limits = in.oneIn(2) ? &limits : nullptr;
        edit.keyPressed = in.oneIn(3) ? takeTyped : nullptr;
        const support::ExactBlock room(in.text(140) + '\0');
        const int32_t result = DialogEdit_DoModal(&edit, room.data(), room.size());
        REQUIRE(strnlen(room.data(), room.size()) < room.size());
        return result;
    }
}

} // namespace fuzz
