// toolkit_functions.h: the functions of toolkit.h that answer with a code and that a stand-in can
// give one body, as rows: ROW(name, parameters, the arguments that tell a call from another). Among
// the arguments a Form, a Widget or an Image is a handle of that kind, and Hex a colour or bits.
// Included where ROW is defined, as often as there are stand-ins; the compiler holds the rows
// against the header.

// clang-format off
#define FRAME int16_t x, int16_t y, int16_t width, int16_t height
#define PLACE x, y, width, height
#define PAIR uint16_t front, uint16_t back

ROW(igUI_Add, (int32_t display, int32_t form), Form{form})
ROW(igUI_Del, (int32_t display, int32_t form), Form{form})
ROW(igUI_Show, (int32_t display, int32_t form), Form{form})
ROW(igUI_ShowExt, (int32_t display, int32_t form, IgEventCallback callback), Form{form}, callback)
ROW(igUI_SetFileFont, (int32_t display, int32_t slot, const char *file), slot, file)
ROW(igUI_SetKeyboard, (int32_t display, IgKeyboardHandler handler), handler)
ROW(igUI_BlockInput, (int32_t display, int32_t block), block)
ROW(igUI_GetWidth, (int32_t display), display)
ROW(igUI_GetHeight, (int32_t display), display)
ROW(igUI_SetBackgroundImage, (int32_t display, int32_t image), Image{image})

ROW(igForm_Create, (const char *caption, int32_t flags), caption, flags)
ROW(igChildForm_Create, (FRAME, const char *caption, int32_t flags), PLACE, caption, flags)
ROW(igForm_SetOption, (int32_t form, uint32_t options), Form{form}, Hex{options})
ROW(igForm_ClearOption, (int32_t form, uint32_t options), Form{form}, Hex{options})
ROW(igForm_SetColors, (int32_t form, PAIR), Form{form}, Hex{front}, Hex{back})
ROW(igForm_SetHeaderColors, (int32_t form, PAIR), Form{form}, Hex{front}, Hex{back})
ROW(igForm_SetHeaderFont, (int32_t form, uint16_t font), Form{form}, font)
ROW(igForm_SetHeaderHeight, (int32_t form, int16_t height), Form{form}, height)
ROW(igForm_SetHeaderJustify, (int32_t form, uint32_t justify), Form{form}, justify)
ROW(igForm_Add, (int32_t form, int32_t widget), Form{form}, Widget{widget})
ROW(igForm_Reset, (int32_t form), Form{form})
ROW(igForm_SetFocused, (int32_t form, int32_t widget), Form{form}, Widget{widget})
ROW(igForm_SetTimeOut, (int32_t form, uint32_t ticks), Form{form}, ticks)
ROW(igForm_ResetTime, (int32_t form), Form{form})
ROW(igForm_GetClientWidth, (int32_t form), Form{form})
ROW(igForm_GetClientHeight, (int32_t form), Form{form})

ROW(igWidget_GetType, (int32_t widget), Widget{widget})
ROW(igWidget_SetBorder, (int32_t widget, uint32_t border), Widget{widget}, border)
ROW(igWidget_SetJustify, (int32_t widget, uint32_t justify), Widget{widget}, justify)
ROW(igWidget_SetTransparency, (int32_t widget, uint32_t value), Widget{widget}, value)
ROW(igWidget_SetFont, (int32_t widget, uint16_t font), Widget{widget}, font)
ROW(igWidget_SetActiveColor, (int32_t widget, PAIR), Widget{widget}, Hex{front}, Hex{back})
ROW(igWidget_SetPassiveColor, (int32_t widget, PAIR), Widget{widget}, Hex{front}, Hex{back})
ROW(igWidget_SetActiveBackImage, (int32_t widget, int32_t image), Widget{widget}, Image{image})
ROW(igWidget_SetPassiveBackImage, (int32_t widget, int32_t image), Widget{widget}, Image{image})
ROW(igWidget_SetKeyScheme, (int32_t widget, int32_t number), Widget{widget}, number)

ROW(igStatic_Create, (FRAME, const char *text, int32_t image), PLACE, text, Image{image})
ROW(igStatic_SetImage, (int32_t widget, int32_t image), Widget{widget}, Image{image})
ROW(igButton_Create, (FRAME, const char *text, int32_t image, uint8_t key),
    PLACE, text, Image{image}, key)
ROW(igButton_SetOption, (int32_t widget, uint32_t options), Widget{widget}, options)

ROW(igInput_Create, (FRAME, uint16_t most, uint32_t style), PLACE, most, Hex{style})
ROW(igInput_SetRadix, (int32_t widget, uint8_t radix), Widget{widget}, radix)
ROW(igInput_SetHideSymbol, (int32_t widget, uint8_t symbol), Widget{widget}, symbol)
ROW(igInput_SetValue, (int32_t widget, const char *text), Widget{widget}, text)
ROW(igInput_GetMaxLen, (int32_t widget), Widget{widget})
ROW(igInput_SetControlCodes, (int32_t widget, uint8_t a, uint8_t b, uint8_t c, uint8_t d),
    Widget{widget}, a, b, c, d)
ROW(igInput_SetUserFunc,
    (int32_t widget, IgInputFunction function, int32_t a, int32_t b, int32_t c),
    Widget{widget}, function, a, b, c)
ROW(igMultiLine_Create, (FRAME, uint32_t style, const char *text), PLACE, Hex{style}, text)
ROW(igMultiLine_SetMaxLen, (int32_t widget, uint16_t most), Widget{widget}, most)
ROW(igMultiLine_SetValue, (int32_t widget, const char *text), Widget{widget}, text)
ROW(igPatternInput_Create, (FRAME, uint32_t style, const char *pattern),
    PLACE, Hex{style}, pattern)
ROW(igPatternInput_SetMaxLen, (int32_t widget, uint16_t most), Widget{widget}, most)
ROW(igPatternInput_SetPatternActiveColor, (int32_t widget, PAIR),
    Widget{widget}, Hex{front}, Hex{back})
ROW(igPatternInput_SetPatternPassiveColor, (int32_t widget, PAIR),
    Widget{widget}, Hex{front}, Hex{back})
ROW(igPatternInput_SetFillSymbol, (int32_t widget, char symbol), Widget{widget}, symbol)
ROW(igIPInput_Create, (FRAME, uint32_t style), PLACE, Hex{style})
ROW(igIPInput_SetIPtext, (int32_t widget, const char *text), Widget{widget}, text)

ROW(igMenuBox_Create, (FRAME, uint32_t columns, uint32_t style), PLACE, columns, Hex{style})
ROW(igMenuBox_AddItemExt2, (int32_t menu, const IgMenuItem *item, int32_t image, uint16_t font),
    Widget{menu}, item->text, item->detail, item->data, item->selected, Image{image}, font)
ROW(igMenuBox_SetItemsTransparency, (int32_t menu, uint32_t value), Widget{menu}, value)
ROW(igMenuBox_SetItemsActiveColor, (int32_t menu, PAIR), Widget{menu}, Hex{front}, Hex{back})
ROW(igMenuBox_SetItemsPassiveColor, (int32_t menu, PAIR), Widget{menu}, Hex{front}, Hex{back})
ROW(igMenuBox_SetItemsActiveBorder, (int32_t menu, uint32_t border), Widget{menu}, border)
ROW(igMenuBox_SetControlCodes, (int32_t menu, uint8_t a, uint8_t b, uint8_t c, uint8_t d),
    Widget{menu}, a, b, c, d)
ROW(igMenuBox_SetRowDelta, (int32_t menu, int32_t pixels), Widget{menu}, pixels)
ROW(igMenuBox_SetAccelFont, (int32_t menu, uint16_t font), Widget{menu}, font)
ROW(igMenuBox_GetSelected, (int32_t menu), Widget{menu})
ROW(igProgress_Create, (FRAME), PLACE)
ROW(igProgress_SetValue, (int32_t widget, int32_t percent), Widget{widget}, percent)
ROW(igSignBox_Create, (FRAME), PLACE)
ROW(igSignBox_SetLineWidth, (int32_t box, int32_t pixels), Widget{box}, pixels)
ROW(igSignBox_SaveData, (int32_t box, const char *file), Widget{box}, file)

ROW(IG_EnableStatusLine, (void))
ROW(IG_DisableStatusLine, (void))

#undef FRAME
#undef PLACE
#undef PAIR
// clang-format on
