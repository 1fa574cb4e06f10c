/*
 * toolkit.h: the terminal's widget toolkit, as the uti library calls it.
 *
 * On the terminal these functions belong to the host process. On a PC libuti-host.so supplies them
 * (host/toolkit/), and the tests supply a set that records its calls (tests/fakes/).
 *
 * Conventions
 *
 *  1. Forms, widgets and images are handles, signed 32-bit numbers above 0; 0 stands for none where
 *     a description allows it. A negative result is a failure and its own error code. A handle that
 *     the toolkit does not know is refused with a negative result, or ignored where there is none.
 *     Where nothing else is said, a result of 0 or more is success.
 *  2. Areas are x, y, width and height in pixels, relative to the form's client area. Colours are
 *     16-bit RGB565, in pairs of foreground and background.
 *  3. Texts are zero-terminated bytes in the terminal's code page and may be null for none. The
 *     toolkit may go on reading a text while the widget lives.
 *  4. A form owns the widgets added to it: deleting it deletes them. Images belong to the toolkit.
 *  5. The toolkit owns no thread. A modal form runs while the application is inside `Wait` or
 *     `WaitSleep`, and callbacks are called from there.
 *  6. Key codes are those of `enum IgKey`; digits, '*', '#' and letters are their characters.
 *
 * uti-platform-check (docs/platform-check.md) holds a terminal to what a program sees of this.
 */
#ifndef UTI_PLATFORM_TOOLKIT_H
#define UTI_PLATFORM_TOOLKIT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Key codes of the toolkit. */
enum IgKey {
    IG_KEY_BACKSPACE = 8,
    IG_KEY_TAB = 9, /**< gives the focus to the next widget */
    IG_KEY_ENTER = 13,
    IG_KEY_ESCAPE = 27,
    IG_KEY_F1 = 59,
    IG_KEY_F2 = 60,
    IG_KEY_LAYOUT = 69, /**< goes on to the next set of letters */
    IG_KEY_CLEAR = 102, /**< empties an input */
    IG_KEY_UP = 103,
    IG_KEY_LEFT = 105,
    IG_KEY_RIGHT = 106,
    IG_KEY_DOWN = 108,
    IG_KEY_MENU = 139,
    IG_KEY_PEN = 255 /**< no key: what event callbacks are given when the pen touches */
};

/** Codes of failures, all below `IG_STATE_CANCELLED`. */
enum IgError {
    IG_ERROR_HANDLE = -2,   /**< the handle is unknown or of another kind */
    IG_ERROR_ARGUMENT = -3, /**< null, empty, or not possible now */
    IG_ERROR_FILE = -4      /**< the file cannot be read or written */
};

/** Kinds of widgets, as `igWidget_GetType` tells them. */
enum IgWidgetType {
    IG_WIDGET_STATIC = 1,
    IG_WIDGET_BUTTON = 2,
    IG_WIDGET_MENU_BOX = 3,
    IG_WIDGET_PROGRESS = 4,
    IG_WIDGET_SIGN_BOX = 5,
    IG_WIDGET_INPUT = 14,
    IG_WIDGET_PATTERN_INPUT = 15,
    IG_WIDGET_MULTI_LINE = 19,
    IG_WIDGET_IP_INPUT = 22
};

/** Justification of texts and images: one horizontal and one vertical bit; 0 is the middle. */
enum IgJustify {
    IG_JUSTIFY_CENTER = 0,
    IG_JUSTIFY_LEFT = 1,
    IG_JUSTIFY_RIGHT = 2,
    IG_JUSTIFY_TOP = 4,
    IG_JUSTIFY_BOTTOM = 8
};

/** States of a form that has ended, besides those that its event callback returned. */
enum IgFormState {
    IG_STATE_CANCELLED = -1,
    IG_STATE_RUNNING = 0,
    IG_STATE_CONFIRMED = 1,
    IG_STATE_TIME_OUT = 10 /**< its own time-out has elapsed */
};

/* ---------------------------------------------------------------------- display stack ---- */

/** Puts a form on top of the display stack. Returns 0 or more, negative on failure. */
int32_t igUI_Add(int32_t display, int32_t form);

/** Takes a form off the stack and deletes it with its widgets, also while it runs: it is modal no
 *  more then. Returns 0 or more, negative on failure. */
int32_t igUI_Del(int32_t display, int32_t form);

/** Draws a form and returns at once. Returns 0 or more, negative on failure. */
int32_t igUI_Show(int32_t display, int32_t form);

/** Called for every event while a form runs, and at least every 100 ticks; `key` points at the key
 *  code, 0 when the event is none. A character of a full keyboard counts as the key of the keypad
 *  that gives it. A nonzero result ends the form and becomes its state; setting `*key` to 0 takes
 *  the key away. A form that is ended without a key and run again at once first takes the key that
 *  waits, so that a callback which always ends it does not make it deaf. */
typedef int32_t (*IgEventCallback)(uint8_t *key);

/** Shows a form and starts its modal run, which goes on while the application waits. A form that
 * has ended runs anew. Returns -1 or more, below -1 on failure. */
int32_t igUI_ShowExt(int32_t display, int32_t form, IgEventCallback callback);

/** Returns nonzero while a modal form runs. */
int32_t igUI_IsModal(void);

/** Sets key scheme `number` (1 and up): up to 12 texts, of which the nth lists the characters that
 *  repeated presses of one key give (the keys 1 to 9, '*', 0, '#'); null for an unchanged key. The
 *  texts must outlive their use. */
int32_t igUI_SetKeyScheme(int32_t display, int32_t number, char *const scheme[12]);

/** Loads a font file into slot 0 to 11. Returns 0 when that was done, anything else when not. */
int32_t igUI_SetFileFont(int32_t display, int32_t slot, const char *fileName);

/** Takes every key typed on the display. Returns 0 to let the toolkit go on with it. */
typedef int32_t (*IgKeyboardHandler)(int32_t display, int32_t key);

/** Installs the handler of the display's keys; `IG_KeyPushCallback` is the toolkit's own. */
int32_t igUI_SetKeyboard(int32_t display, IgKeyboardHandler handler);

/** Stops keys and pen (`block` nonzero) or lets them through again. */
int32_t igUI_BlockInput(int32_t display, int32_t block);

/** The size of the display in pixels. */
int32_t igUI_GetWidth(int32_t display);
int32_t igUI_GetHeight(int32_t display);

/** Sets the picture behind all forms; image 0 removes it. Returns 0 or more, negative on failure.
 */
int32_t igUI_SetBackgroundImage(int32_t display, int32_t image);

/* ------------------------------------------------------------------------------- forms ---- */

/** Options of a form. A new form has IG_FORM_HEADER, IG_FORM_CLOSE_MARK and IG_FORM_SHADOW. */
enum IgFormOption {
    IG_FORM_HEADER = 0x01,     /**< a header line with the caption, when there is a caption */
    IG_FORM_CLOSE_MARK = 0x02, /**< a cross in the header */
    IG_FORM_SHADOW = 0x04,     /**< a shadow around a child form */
    IG_FORM_FRAMELESS = 0x10,  /**< no line around the form */
    IG_FORM_OPAQUE = 0x20,     /**< filled with its background colour */
    IG_FORM_TRANSPARENT = 0x40 /**< the display's background shows; with neither of the two it
                                    shines through the background colour */
};

/** Creates a form that fills the display. `flags` is 0. Returns its handle. */
int32_t igForm_Create(const char *caption, int32_t flags);

/** Creates a form of its own place and size. `flags` is 0. Returns its handle. */
int32_t igChildForm_Create(int16_t x, int16_t y, int16_t width, int16_t height, const char *caption,
                           int32_t flags);

int32_t igForm_SetOption(int32_t form, uint32_t options);   /**< Sets bits of `IgFormOption`. */
int32_t igForm_ClearOption(int32_t form, uint32_t options); /**< Clears bits of `IgFormOption`. */
int32_t igForm_SetColors(int32_t form, uint16_t foreground, uint16_t background);
int32_t igForm_SetHeaderColors(int32_t form, uint16_t foreground, uint16_t background);
int32_t igForm_SetHeaderFont(int32_t form, uint16_t font);
int32_t igForm_SetHeaderHeight(int32_t form, int16_t height);
int32_t igForm_SetHeaderJustify(int32_t form, uint32_t justify);

/** Adds a widget to a form, behind those added before. Returns 0 or more, negative on failure. */
int32_t igForm_Add(int32_t form, int32_t widget);

/** Lays the form out anew and gives the focus to its first widget that can have it. */
int32_t igForm_Reset(int32_t form);

/** Gives the focus to a widget of the form. Returns 0 or more, negative on failure. */
int32_t igForm_SetFocused(int32_t form, int32_t widget);

/** Ends the form with IG_STATE_TIME_OUT after so many ticks; 0 for never. */
int32_t igForm_SetTimeOut(int32_t form, uint32_t ticks);

/** Starts the form's time-out anew. */
int32_t igForm_ResetTime(int32_t form);

/** Returns the form's state: `IgFormState`, or what its event callback returned; an unknown form
 *  counts as cancelled. */
int32_t igForm_GetState(int32_t form);

/** The size of a form without header and frame, in pixels. */
int32_t igForm_GetClientWidth(int32_t form);
int32_t igForm_GetClientHeight(int32_t form);

/* ---------------------------------------------------------------------- all widgets ---- */

int32_t igWidget_GetType(int32_t widget); /**< Returns the kind, `IgWidgetType`. */
/** Sets the border: 0 none, 1 a line, 2 rounded, 3 sunken; others as 1. */
int32_t igWidget_SetBorder(int32_t widget, uint32_t border);
int32_t igWidget_SetJustify(int32_t widget, uint32_t justify); /**< Bits of `IgJustify`. */
/** Sets the background: 0 filled with its colour, anything else not drawn. */
int32_t igWidget_SetTransparency(int32_t widget, uint32_t transparency);
int32_t igWidget_SetFont(int32_t widget, uint16_t font); /**< A slot of the display's fonts. */
/** The colours with the focus, and those without. */
int32_t igWidget_SetActiveColor(int32_t widget, uint16_t foreground, uint16_t background);
int32_t igWidget_SetPassiveColor(int32_t widget, uint16_t foreground, uint16_t background);
/** The pictures behind a widget with the focus, and without; 0 for none. */
int32_t igWidget_SetActiveBackImage(int32_t widget, int32_t image);
int32_t igWidget_SetPassiveBackImage(int32_t widget, int32_t image);
/** Gives an input the key scheme of this number; 0 takes it away. */
int32_t igWidget_SetKeyScheme(int32_t widget, int32_t number);
/** Returns how far a widget can scroll up (`direction` 0) or down (1); 0 when it cannot. */
int32_t igWidget_GetDeltaY(int32_t widget, int32_t direction);

/* ------------------------------------------------------------ images, statics, buttons ---- */

/** Loads an image file. Returns its handle; 0 for a null or empty name; negative when it cannot be
 *  loaded. */
int32_t igImage_CreateFromFile(const char *fileName);

/** Creates a text, an image or both. `image` 0 or negative is none. Returns the widget's handle. */
int32_t igStatic_Create(int16_t x, int16_t y, int16_t width, int16_t height, const char *text,
                        int32_t image);
int32_t igStatic_SetImage(int32_t widget, int32_t image); /**< 0 shows none. */

/** Options of a button. */
enum IgButtonOption {
    IG_BUTTON_END = 2 /**< pressing it confirms the form, or cancels it when its key is Escape */
};

/** Creates a button with text, image or both, pressed by `key` (0 for none), or by Enter or the
 * pen, which then come to the same as that key. Returns the widget's handle. */
int32_t igButton_Create(int16_t x, int16_t y, int16_t width, int16_t height, const char *text,
                        int32_t image, uint8_t key);
int32_t igButton_SetOption(int32_t widget, uint32_t options); /**< Bits of `IgButtonOption`. */

/* ------------------------------------------------------------------------------ inputs ---- */

/** Style bits of single-line, pattern and IP inputs. */
enum IgInputStyle {
    IG_INPUT_DIGITS = 0x001,     /**< digits first, then letters, and nothing else */
    IG_INPUT_AMOUNT = 0x002,     /**< with digits: one decimal point, no letters */
    IG_INPUT_READ_ONLY = 0x004,  /**< takes no keys; a label, whose text is wrapped at words */
    IG_INPUT_FRACTION = 0x008,   /**< fills up from the right below a fixed decimal point */
    IG_INPUT_RIGHT = 0x010,      /**< the text stands at the right */
    IG_INPUT_PATTERN = 0x040,    /**< a pattern with places to fill */
    IG_INPUT_UPPER_CASE = 0x100, /**< letters become capitals */
    IG_INPUT_CURSOR = 0x200,     /**< the cursor is shown */
    IG_INPUT_NO_LETTERS = 0x400  /**< with digits: no letters, unless they become capitals */
};

/** Style bits of multi-line inputs. */
enum IgMultiLineStyle {
    IG_MULTI_LINE_SCROLL_BAR = 0x001, /**< a scroll bar at the right */
    IG_MULTI_LINE_WRAP = 0x100,       /**< long lines are wrapped at words */
    IG_MULTI_LINE_READ_ONLY = 0x200   /**< takes no keys but those that scroll */
};

/** Creates a single-line input of up to `maxLength` characters, 0 for 255. Returns the widget's
 *  handle. */
int32_t igInput_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint16_t maxLength,
                       uint32_t style);
/** Sets the number of digits behind the decimal point of an amount. */
int32_t igInput_SetRadix(int32_t widget, uint8_t radix);
/** Shows `symbol` in place of every character typed; 0 shows them. */
int32_t igInput_SetHideSymbol(int32_t widget, uint8_t symbol);
/** Sets the text, cut to the maximum length; single-line and pattern inputs. */
int32_t igInput_SetValue(int32_t widget, const char *text);
/** Returns the text, never null; single-line and pattern inputs. Do not free. */
const char *igInput_GetValue(int32_t widget);
int32_t igInput_GetMaxLen(int32_t widget);
/** Sets the key codes that erase the last character, empty the input, change the letters, and
 *  confirm beside Enter; 0 for none. They add to the toolkit's own. A code that is given for
 * several erases while there is something to erase, and changes the letters of an empty input. */
int32_t igInput_SetControlCodes(int32_t widget, uint8_t erase, uint8_t clear, uint8_t layout,
                                uint8_t confirm);

/** Called for every character key before it is typed into an input. With the result 0 the function
 * has seen to the key and the input leaves its text alone; else the input takes the key. */
typedef int32_t (*IgInputFunction)(int32_t widget, int32_t key);

/** Installs the function of an input; the three words are 0. */
int32_t igInput_SetUserFunc(int32_t widget, IgInputFunction function, int32_t word1, int32_t word2,
                            int32_t word3);

/** Creates a multi-line input with a first text. `style` holds bits of `IgMultiLineStyle`. Returns
 *  the widget's handle. */
int32_t igMultiLine_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t style,
                           const char *text);
int32_t igMultiLine_SetMaxLen(int32_t widget, uint16_t maxLength);
int32_t igMultiLine_SetValue(int32_t widget, const char *text);
const char *igMultiLine_GetValue(int32_t widget); /**< Never null. Do not free. */

/** Creates an input for a pattern, in which every underscore is a place to fill: "__.__.____". Its
 *  value are the characters filled in. Returns the widget's handle. */
int32_t igPatternInput_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t style,
                              const char *pattern);
int32_t igPatternInput_SetMaxLen(int32_t widget, uint16_t maxLength); /**< 0: all places. */
/** The colours of the pattern itself with the focus, and without; IP inputs take them too. */
int32_t igPatternInput_SetPatternActiveColor(int32_t widget, uint16_t foreground,
                                             uint16_t background);
int32_t igPatternInput_SetPatternPassiveColor(int32_t widget, uint16_t foreground,
                                              uint16_t background);
/** Sets the character that stands in empty places. */
int32_t igPatternInput_SetFillSymbol(int32_t widget, char symbol);

/** Creates an input for an IPv4 address. The first digit typed into a field after going there
 *  replaces what it held. Returns the widget's handle. */
int32_t igIPInput_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t style);
/** Sets the address from a text such as "192.168.0.1". */
int32_t igIPInput_SetIPtext(int32_t widget, const char *text);
/** Copies the address as such a text, cut to `size` - 1 characters, with a terminating zero; an
 * empty text when nothing was entered. */
int32_t igIPInput_GetIPtext(int32_t widget, char *buffer, uint32_t size);

/* ---------------------------------------------------------------------------- menu box ---- */

/** Style bits of a menu box. */
enum IgMenuBoxStyle {
    IG_MENU_WRAP = 0x0100,        /**< the end of the list leads to its start */
    IG_MENU_IMAGES = 0x0200,      /**< items show their images */
    IG_MENU_CONFIRM = 0x1000,     /**< Enter on an item confirms the form */
    IG_MENU_DIGITS = 0x2000,      /**< a digit key chooses one of the first nine items at once */
    IG_MENU_SHOW_DIGITS = 0x4000, /**< the digits are shown before the items */
    IG_MENU_SCROLL_BAR = 0x8000   /**< a scroll bar at the right */
};

/** An item of a menu box. */
typedef struct IgMenuItem {
    uintptr_t text;   /**< address of its text, or 0 */
    uintptr_t detail; /**< address of a second text, shown at the right, or 0 */
    uintptr_t data;   /**< the application's own */
    uint8_t selected; /**< nonzero: the item that is chosen at first; the first such one counts */
} IgMenuItem;

/** Creates a menu box; `columns` nonzero shows the items as tiles, two in a row, 0 as a list.
 *  Returns the widget's handle. */
int32_t igMenuBox_Create(int16_t x, int16_t y, int16_t width, int16_t height, uint32_t columns,
                         uint32_t style);
/** Appends an item; it is copied, its texts are not. Returns 0 or more, negative on failure. */
int32_t igMenuBox_AddItemExt2(int32_t menu, const IgMenuItem *item, int32_t image, uint16_t font);
int32_t igMenuBox_SetItemsTransparency(int32_t menu, uint32_t transparency);
int32_t igMenuBox_SetItemsActiveColor(int32_t menu, uint16_t foreground, uint16_t background);
int32_t igMenuBox_SetItemsPassiveColor(int32_t menu, uint16_t foreground, uint16_t background);
int32_t igMenuBox_SetItemsActiveBorder(int32_t menu, uint32_t border);
/** Sets the key codes that go one item up, one down, one page up and one page down, beside the
 *  arrow keys; 0 for none. */
int32_t igMenuBox_SetControlCodes(int32_t menu, uint8_t up, uint8_t down, uint8_t pageUp,
                                  uint8_t pageDown);
/** Sets the pixels added to the font's height in every row. */
int32_t igMenuBox_SetRowDelta(int32_t menu, int32_t pixels);
/** Sets the font slot of the digits before the items. */
int32_t igMenuBox_SetAccelFont(int32_t menu, uint16_t font);
/** Returns the number of the chosen item from 1, at first the first one that is `selected` or item
 * 1; negative when there is no item. */
int32_t igMenuBox_GetSelected(int32_t menu);

/* ------------------------------------------------------------- progress bar, signature ---- */

/** Creates a progress bar at 0 of 100. Returns the widget's handle. */
int32_t igProgress_Create(int16_t x, int16_t y, int16_t width, int16_t height);

/** Sets how much is done, 0 to 100, and draws it at once. For applications; the library itself
 * leaves a bar as it is created. */
int32_t igProgress_SetValue(int32_t widget, int32_t percent);

/** Creates a box to sign in. Returns the widget's handle. */
int32_t igSignBox_Create(int16_t x, int16_t y, int16_t width, int16_t height);
int32_t igSignBox_SetLineWidth(int32_t widget, int32_t pixels);
/** Saves the signature to a file. Returns above 0 when it was saved, 0 when nothing was drawn,
 *  negative on failure. */
int32_t igSignBox_SaveData(int32_t widget, const char *fileName);

/* ------------------------------------------------------------- status line and services ---- */

/** Shows the status line. Returns 0 or more, negative on failure. */
int32_t IG_EnableStatusLine(void);
/** Hides the status line. Returns 0 or more, negative on failure. */
int32_t IG_DisableStatusLine(void);
/** Draws the status line anew. */
void IG_UpdateStatusLine(void);

/** Writes the path of an image of the application into `buffer`, cut to `capacity` - 1 characters,
 *  with a terminating zero; a null or empty name leaves the buffer as it is. Returns 0. */
int32_t IG_GetFullImagePath(const char *name, char *buffer, uint32_t capacity);

/** The toolkit's own handler of the display's keys. Returns 0. */
int32_t IG_KeyPushCallback(int32_t display, int32_t key);

#ifdef __cplusplus
}
#endif

#endif /* UTI_PLATFORM_TOOLKIT_H */
