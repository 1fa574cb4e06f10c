// layout.cpp: the layouts of the exported records on the terminal, a machine of 32-bit words. It
// holds no code: the 32-bit build checks it, since applications share these records with us.
#include "terminal.h"
#include "toolkit.h"
#include "uti.h"

#include <cstddef>

#if UINTPTR_MAX == UINT32_MAX

// A record, its size, and its fields with their offsets.
#define RECORD(type, size, ...)                                                                    \
    static_assert([] {                                                                             \
        using Record = type;                                                                       \
        return sizeof(Record) == (size)__VA_ARGS__;                                                \
    }())
#define AT(field, offset) &&offsetof(Record, field) == (offset)

RECORD(TerminalDate, 6, AT(month, 2) AT(day, 3));
RECORD(TerminalTime, 3, );
RECORD(ComPortParameters, 12, AT(speed, 4) AT(format, 8));
RECORD(TraceExDevice, 36, );
RECORD(TraceExSettings, 180,
       AT(mode, 4) AT(modules, 8) AT(text, 136) AT(device, 140) AT(maxSize, 176));
RECORD(TraceWord, 4, );
RECORD(MonitorExSettings, 44, AT(baseName, 4) AT(maxSize, 40));
RECORD(ParserNode, 16, AT(source, 4) AT(valueOffset, 8) AT(length, 12));
RECORD(TlvHeader, 8, AT(length, 4));
RECORD(List, 96,
       AT(GetDataInPosition, 32) AT(AddTail, 44) AT(GetListNode, 72) AT(count, 76) AT(head, 80)
           AT(tail, 84) AT(current, 88) AT(index, 92));
RECORD(ListNode, 12, AT(prev, 4) AT(data, 8));
RECORD(StorageEntry, 20, AT(type, 4) AT(data, 8) AT(length, 12) AT(next, 16));
RECORD(StorageBytes, 8, AT(length, 4));
RECORD(StorageTable, 396, AT(totalSize, 4) AT(buckets, 8));
RECORD(ResourceLanguageInfo, 6, AT(info, 4));
RECORD(ResourceLanguage, 12, AT(info, 4) AT(tableOffset, 8));
RECORD(ResourceSmallString, 36, AT(text, 2));
RECORD(ResourceLargeString, 12, AT(text, 4) AT(length, 8));
RECORD(ResourceModule, 868,
       AT(handle, 16) AT(version, 20) AT(languages, 24) AT(tableOffsets, 84) AT(smallStrings, 144)
           AT(largeStrings, 864));
RECORD(ResourceStoredStrings, 20, AT(strings, 16));
RECORD(SectionKeyInfo, 512, AT(section, 256));
RECORD(Rectangle, 8, AT(top, 2) AT(right, 4) AT(bottom, 6));
RECORD(RgbColor, 3, AT(green, 1) AT(blue, 2));
RECORD(ColorSet, 12, AT(passiveBackground, 3) AT(activeForeground, 6) AT(activeBackground, 9));
RECORD(GraphicEditEntry, 848,
       AT(valueBuffer, 4) AT(area, 8) AT(justify, 16) AT(fontName, 20) AT(font, 150) AT(border, 152)
           AT(transparency, 153) AT(multiLine, 156) AT(maxLength, 160) AT(secondLength, 162)
               AT(inputFlagA, 164) AT(inputType, 168) AT(inputFlagB, 172) AT(inputFlagC, 173)
                   AT(inputFlagD, 174) AT(hideInput, 175) AT(keySchemeText, 176) AT(pattern, 433)
                       AT(colors, 690) AT(radix, 702) AT(inputFlagF, 703) AT(inputFlagE, 704)
                           AT(editValue, 708) AT(labelValue, 712) AT(fillSymbol, 716)
                               AT(name, 717));
RECORD(GraphicEditParameters, 8484, AT(count, 8480));
RECORD(GraphicStaticTextEntry, 424,
       AT(valueBuffer, 4) AT(area, 8) AT(justify, 16) AT(fontName, 20) AT(font, 150) AT(image, 152)
           AT(name, 281) AT(border, 410) AT(transparency, 411) AT(colors, 412));
RECORD(GraphicStaticTextParameters, 4244, AT(count, 4240));
RECORD(GraphicButtonEntry, 556,
       AT(valueBuffer, 4) AT(area, 8) AT(justify, 16) AT(fontName, 20) AT(font, 150) AT(image, 152)
           AT(activeBackImage, 281) AT(passiveBackImage, 410) AT(border, 539) AT(option, 540)
               AT(transparency, 541) AT(key, 542) AT(colors, 543));
RECORD(GraphicButtonParameters, 5564, AT(count, 5560));
RECORD(GraphicIpEditEntry, 168,
       AT(valueBuffer, 4) AT(area, 8) AT(justify, 16) AT(fontName, 20) AT(font, 150) AT(border, 152)
           AT(transparency, 153) AT(colors, 154));
RECORD(GraphicIpEditParameters, 1684, AT(count, 1680));
RECORD(GraphicBoxEntry, 164,
       AT(area, 4) AT(justify, 12) AT(fontName, 16) AT(font, 146) AT(border, 148)
           AT(transparency, 149) AT(colors, 150));
RECORD(GraphicBoxParameters, 1644, AT(count, 1640));
RECORD(GraphicMenuElement, 148, AT(area, 4) AT(value, 12) AT(image, 13) AT(notFirst, 144));
RECORD(GraphicMenuEntry, 608,
       AT(area, 4) AT(justify, 12) AT(fontName, 16) AT(font, 146) AT(text, 148) AT(border, 277)
           AT(transparency, 278) AT(style, 279) AT(accelFontMode, 280) AT(option, 284)
               AT(colors, 288) AT(keys, 300) AT(styleFlag, 304) AT(elements, 308)
                   AT(elementCount, 604));
RECORD(GraphicMenuParameters, 6084, AT(count, 6080));
RECORD(GraphicCaption, 160,
       AT(justify, 8) AT(fontName, 12) AT(font, 142) AT(colors, 144) AT(count, 156));
RECORD(GraphicDialogParameters, 16, );
RECORD(EditParameters, 464,
       AT(shortName, 8) AT(justify, 16) AT(value69, 20) AT(value70, 24) AT(value71, 28)
           AT(value72, 32) AT(value73, 36) AT(value74, 40) AT(value66, 44) AT(text, 48)
               AT(value76, 304) AT(value77, 305) AT(value65, 312) AT(value67, 316) AT(value78, 320)
                   AT(value79, 322) AT(value80, 324) AT(pattern, 326) AT(value64, 455)
                       AT(value82, 456) AT(value83, 457) AT(value84, 458) AT(value85, 459)
                           AT(value86, 460) AT(value91, 461));
RECORD(ListBoxParameters, 48,
       AT(shortName, 8) AT(justify, 16) AT(value96, 20) AT(value97, 24) AT(value98, 28)
           AT(value99, 32) AT(value100, 36) AT(value101, 40) AT(value102, 41) AT(value103, 44));
RECORD(LabelEntry, 64,
       AT(area, 32) AT(shortName, 40) AT(justify, 48) AT(value7, 52) AT(value10, 56)
           AT(value122, 60));
RECORD(LabelsParameters, 644, AT(count, 640));
RECORD(CaptionParameters, 24, AT(shortName, 8) AT(value32, 16) AT(justify, 20));
RECORD(BorderParameters, 20, AT(value48, 8) AT(shortName, 12));
RECORD(FrameParameters, 12, AT(value48, 8));
RECORD(FooterParameters, 28, AT(shortName, 8) AT(value112, 16) AT(justify, 20) AT(value7, 24));
RECORD(ImageEntry, 42, AT(image, 8));
RECORD(ImagesParameters, 86, AT(count, 84));
RECORD(StatusParameters, 20, AT(shortName, 8) AT(value, 16));
RECORD(LabelValue, 8, AT(value, 4));
RECORD(DialogRequest, 60,
       AT(module, 4) AT(caption, 8) AT(text, 12) AT(labelValues, 16) AT(reserved1, 20)
           AT(needToBreak, 24) AT(reserved2, 28) AT(timeout, 32) AT(refresh, 36)
               AT(keyPostProcessing, 40) AT(imageName, 44) AT(colors, 48));
RECORD(ConfirmationRequest, 68, AT(secondButton, 60) AT(firstButton, 64));
RECORD(ListItem, 20, AT(word2, 4) AT(flag, 8) AT(word3, 12) AT(imageName, 16));
RECORD(ListRequest, 68, AT(items, 60) AT(itemCount, 64));
RECORD(InputLimits, 8, AT(minLength, 2) AT(kind, 4));
RECORD(EditRequest, 80,
       AT(radix, 60) AT(option, 61) AT(pattern, 64) AT(fillSymbol, 68) AT(limits, 72)
           AT(keyPressed, 76));
RECORD(IgMenuItem, 16, AT(detail, 4) AT(data, 8) AT(selected, 12));

#endif
