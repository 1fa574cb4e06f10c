// layout.cpp: the layouts of the exported records on the terminal, a machine of 32-bit words. It
// holds no code: the 32-bit build checks it, since applications share these records with us.
#include "terminal.h"
#include "uti.h"

#include <cstddef>

#if UINTPTR_MAX == UINT32_MAX

#define SIZE(record, size) static_assert(sizeof(record) == (size))
#define FIELD(record, field, offset) static_assert(offsetof(record, field) == (offset))

SIZE(TerminalDate, 6);
FIELD(TerminalDate, month, 2);
FIELD(TerminalDate, day, 3);
SIZE(TerminalTime, 3);
SIZE(ComPortParameters, 12);
FIELD(ComPortParameters, speed, 4);
FIELD(ComPortParameters, format, 8);

SIZE(TraceExSettings, 180);
FIELD(TraceExSettings, mode, 4);
FIELD(TraceExSettings, modules, 8);
FIELD(TraceExSettings, text, 136);
FIELD(TraceExSettings, device, 140);
FIELD(TraceExSettings, maxSize, 176);
SIZE(TraceWord, 4);
SIZE(MonitorExSettings, 44);
FIELD(MonitorExSettings, baseName, 4);
FIELD(MonitorExSettings, maxSize, 40);

SIZE(ParserNode, 16);
FIELD(ParserNode, source, 4);
FIELD(ParserNode, valueOffset, 8);
FIELD(ParserNode, length, 12);
SIZE(TlvHeader, 8);
FIELD(TlvHeader, length, 4);

SIZE(List, 96);
FIELD(List, GetDataInPosition, 8 * 4);
FIELD(List, AddTail, 11 * 4);
FIELD(List, GetListNode, 18 * 4);
FIELD(List, count, 76);
FIELD(List, head, 80);
FIELD(List, tail, 84);
FIELD(List, current, 88);
FIELD(List, index, 92);
SIZE(ListNode, 12);
FIELD(ListNode, prev, 4);
FIELD(ListNode, data, 8);

SIZE(StorageEntry, 20);
FIELD(StorageEntry, type, 4);
FIELD(StorageEntry, data, 8);
FIELD(StorageEntry, length, 12);
FIELD(StorageEntry, next, 16);
SIZE(StorageTable, 8 + 97 * 4);
FIELD(StorageTable, totalSize, 4);
FIELD(StorageTable, buckets, 8);

SIZE(ResourceLanguageInfo, 6);
FIELD(ResourceLanguageInfo, info, 4);
SIZE(ResourceLanguage, 12);
FIELD(ResourceLanguage, info, 4);
FIELD(ResourceLanguage, tableOffset, 8);
SIZE(ResourceSmallString, 36);
FIELD(ResourceSmallString, text, 2);
SIZE(ResourceLargeString, 12);
FIELD(ResourceLargeString, text, 4);
FIELD(ResourceLargeString, length, 8);
SIZE(ResourceModule, 868);
FIELD(ResourceModule, handle, 16);
FIELD(ResourceModule, version, 20);
FIELD(ResourceModule, languages, 24);
FIELD(ResourceModule, tableOffsets, 84);
FIELD(ResourceModule, smallStrings, 144);
FIELD(ResourceModule, largeStrings, 864);
SIZE(ResourceStoredStrings, 20);
FIELD(ResourceStoredStrings, strings, 16);

SIZE(SectionKeyInfo, 512);
FIELD(SectionKeyInfo, section, 256);

#endif
