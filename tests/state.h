// state.h: bytes in memory of their exact size, and the state that the library keeps made as new,
// for tests, fuzz harnesses and whatever else calls it again and again in one process.
#pragma once

#include "Src/utiDialogsForm.h"
#include "Src/utiDialogsRecords.h"
#include "uti.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace support {

// Bytes in a heap block of exactly their size, so that the sanitizer sees any step past the end.
class ExactBlock {
public:
    explicit ExactBlock(std::string_view bytes)
        : bytes_(new char[bytes.size()]), size_(static_cast<uint32_t>(bytes.size())) {
        std::memcpy(bytes_.get(), bytes.data(), bytes.size());
    }
    char *data() const { return bytes_.get(); }
    uint32_t size() const { return size_; }

private:
    std::unique_ptr<char[]> bytes_;
    uint32_t size_;
};

// Forgets every module, stored string and language, as if the library had just been loaded.
inline void forgetResources() {
    while (ModuleList && !ModuleList->IsEmpty(ModuleList)) {
        CheckExternalResources = 0;
        Resource_Close(static_cast<ResourceModule *>(ModuleList->First(ModuleList))->name);
    }
    // Strings of modules that were never loaded.
    for (int i = 0; ResourceStorageList && i < ResourceStorageList->count; ++i) {
        void *each = ResourceStorageList->GetDataInPosition(ResourceStorageList, i);
        Storage_Free(static_cast<ResourceStoredStrings *>(each)->strings);
        std::free(each);
    }
    List_Destroy(ModuleList);
    List_Destroy(ResourceStorageList);
    ModuleList = nullptr;
    ResourceStorageList = nullptr;
    CheckExternalResources = 0;
    std::memset(CurrentLanguage, 0, sizeof CurrentLanguage);
}

// Everything that a dialog may leave behind in the library, and the log closed.
inline void forgetDialogs() {
    TraceExClose();
    forgetResources();
    uti::currentForm = -1;
    uti::Dialogs_ResetControls();
    uti::freeLastTexts();
    for (int slot = 6; slot < FONT_SLOTS; ++slot) {
        std::free(const_cast<char *>(fontTable[slot]));
        fontTable[slot] = nullptr;
    }
    currentDialogType = currentDialogTimeout = currentDialogPositionType = 0;
    currentDialogAreaRectangle = {};
    UserDialogResult = EndDialog = 0;
    dialogDeactivate = 0;
    NeedToBreakFunction = nullptr;
    RefreshDialogFunction = nullptr;
    KeyPostProcessingFunction = nullptr;
    currentKeyPressedCallback = nullptr;
    refLabelData = nullptr;
}

} // namespace support
