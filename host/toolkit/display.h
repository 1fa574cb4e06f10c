// display.h: the display as a whole: the stack of forms, the modal run, and drawing what changed.
// It has no thread; everything happens while the application shows something or waits.
#pragma once

#include "host/toolkit/face.h"
#include "host/toolkit/fit.h"
#include "host/toolkit/form.h"
#include "host/toolkit/handles.h"
#include "host/toolkit/stage.h"
#include "host/toolkit/status_line.h"
#include "host/toolkit/widget.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace uti::host {

class Display {
public:
    static constexpr int32_t handle = 1;

    explicit Display(Size size);
    ~Display();
    Display(const Display &) = delete;
    Display &operator=(const Display &) = delete;

    // --- what lives behind handles

    template <class Kind, class... Arguments>
    int32_t createWidget(const Arguments &...arguments) {
        return keep<Widget>(widgets_, std::make_unique<Kind>(stage_, arguments...));
    }
    int32_t createForm(const char *caption, const Rect *area) {
        return keep<Form>(forms_, std::make_unique<Form>(stage_, caption, area));
    }
    int32_t loadImage(const std::string &name);
    Widget *widget(int32_t widget) const { return widgets_.find(widget); }
    Form *form(int32_t form) const { return forms_.find(form); }
    Stage &stage() { return stage_; }

    // --- the stack of forms

    void add(int32_t form);
    // Deletes a form with its widgets.
    void remove(int32_t form);
    void show(int32_t form);
    // Shows a form and starts its modal run; another one that runs is cancelled.
    void run(int32_t form, IgEventCallback callback);
    // The form of the modal run that goes on; null when there is none.
    Form *running() const;
    // How many modal runs have been started.
    uint32_t runs() const { return runs_; }
    // The forms that can be seen, from the lowest to the topmost.
    std::vector<const Form *> visibleForms() const;

    // --- the outside

    // A new face, behind which somebody is there again.
    void useFace(std::unique_ptr<Face> face) {
        face_ = std::move(face);
        isClosed_ = false;
    }
    void setKeyboardHandler(IgKeyboardHandler handler) { keyboardHandler_ = handler; }
    void blockInput(bool isBlocked) { isInputBlocked_ = isBlocked; }
    // The last key as a code of the terminal, 0 for none.
    void keepKey(uint8_t code) { lastKey_ = code; }
    uint8_t takeKey() { return std::exchange(lastKey_, uint8_t{0}); }
    // The person went away while no form was running, which cancels the next one; an application's
    // callback never sees it, since it might take it for an answer.
    bool isClosed() const { return isClosed_; }
    // Lets `milliseconds` of the platform's clock pass, in which events come and the running form
    // goes on.
    void wait(uint32_t milliseconds);
    void handleEvent(const Event &event);

    // --- drawing

    Size size() const { return surface_.size(); }
    // Makes room for the status line or takes it, for forms that are shown from now on.
    void enableStatusLine(bool isEnabled);
    bool statusLineShown() const;
    const StatusLine &statusLine() const { return statusLine_; }
    std::optional<Cut> cutStatusLine() const;
    void damageStatusLine();
    // Column and row of the text cursor, negative before it is placed.
    Point cursor() const { return cursor_; }
    void setCursor(Point cursor) { cursor_ = cursor; }
    // Draws what changed and hands it to the face.
    void redraw();
    void drawAll(const Rect &part); // without the face
    const Surface &surface() const { return surface_; }
    // The texts in a part of the display that are cut.
    std::vector<Misfit> misfits(const Rect &part) const;
    void setBackground(int32_t image);

private:
    class Dispatch;

    template <class Thing>
    int32_t keep(Handles<Thing> &things, std::unique_ptr<Thing> thing) {
        if (lastHandle_ == INT32_MAX)
            return IG_ERROR_HANDLE;
        thing->handle = ++lastHandle_;
        things.add(lastHandle_, std::move(thing));
        return lastHandle_;
    }
    // The running form, unless its events are being handled further up the call stack.
    Form *listening() const;
    enum class Asking : uint8_t { nobody, callback };
    void press(const Event &event, Asking asking);
    void takeWaiting();
    void touch(PenPhase phase, Point at);
    // Lets the application's callback see an event. Returns the form when its run goes on.
    Form *ask(uint8_t &key);
    Form *poll();
    void tick();
    void updateStatusLine();
    void drawDesktop(Painter &painter);
    // Ends what was deleted, unless its code may still be running.
    void sweep();

    Surface surface_;
    Stage stage_;
    StatusLine statusLine_;
    Handles<Form> forms_;
    Handles<Widget> widgets_;
    int32_t lastHandle_ = handle;
    // What was deleted while its own code was running.
    std::vector<std::unique_ptr<Form>> deletedForms_;
    std::vector<std::unique_ptr<Widget>> deletedWidgets_;

    std::vector<Form *> stack_; // the topmost last
    int32_t background_ = 0;
    int32_t modal_ = 0; // the form that was run last
    IgEventCallback callback_ = nullptr;
    uint32_t runs_ = 0;
    uint32_t asked_ = 0;      // ticks of the last callback
    int32_t polledOut_ = 0;   // the form that the callback ended without a key
    bool isRunAgain_ = false; // it is shown anew, and has not taken an event since
    std::optional<Event> waiting_;
    int32_t dispatching_ = 0; // the form whose events are being handled

    IgKeyboardHandler keyboardHandler_ = IG_KeyPushCallback;
    bool isInputBlocked_ = false;
    uint8_t lastKey_ = 0;
    Point cursor_ = {-1, -1};
    bool isClosed_ = false;
    std::unique_ptr<Face> face_;
};

// The one display of the process, created by its first use.
Display &display();

} // namespace uti::host
