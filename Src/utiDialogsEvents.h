// utiDialogsEvents.h: what the modal dialogs install of the events room.
#pragma once

#include "uti.h"

namespace uti {

// The states that the event callback ends a form with, beside the toolkit's own.
inline constexpr int32_t stateBroken = 101;
inline constexpr int32_t stateRefresh = 102;

inline constexpr uint8_t keyEnter = 13;
inline constexpr uint8_t keyEscape = 27;

// Installs what the request gives of the application's functions.
void installCallbacks(const DialogRequest &request);

// Takes all of them away.
void clearCallbacks();

// Offers a key typed into the main edit to the application. Returns 0: the edit does nothing more.
int32_t Dialogs_EditKeyHook(int32_t widget, int32_t key);

} // namespace uti
