// utiDialogsModal.h: the road of every dialog from its request to its result, for the rooms that
// have a kind of dialog of their own.
#pragma once

#include "Src/assertions.h"
#include "uti.h"

namespace uti {

// A kind of dialog: what it expects of its description and takes of its request.
struct DialogKind {
    DialogType type;
    bool labels = true;          // texts for the labels
    bool callbacks = true;       // the application's functions
    bool clearsOnFailure = true; // clears the functions also when it ends before the run
};

// Shows the form by a mode of `enum ShowMode` until it ends. Returns the result of the dialog.
int32_t Dialogs_RunForm(uint32_t mode);

// The steps that a kind of dialog adds to the road, in this order. A negative code ends the dialog.
struct DialogSteps {
    virtual int32_t afterDescription() { return UTI_OK; }
    virtual void assignValues() {}
    virtual int32_t afterControls() { return UTI_OK; }
    virtual void afterTimeout() {}
    virtual int32_t run() { return Dialogs_RunForm(SHOW_WITH_TIMEOUT); }

protected:
    ~DialogSteps() = default;
};

// Goes the road. Returns the result of the dialog.
int32_t performDialog(const DialogRequest &request, const DialogKind &kind, DialogSteps &steps);

} // namespace uti
