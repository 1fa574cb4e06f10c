/* receipt.c: the receipt, 32 columns wide, laid out with the library's text pieces. */
#include "sale.h"
#include "screen.h"

#include <stdio.h>
#include <string.h>

enum { COLUMNS = 32 };

static int32_t result; /* of the first line that was not printed, else 0 */

static void printLine(const char *line) {
    if (result == 0)
        result = Printer_PrintString(joined(line, "\n"), 0);
}

/* Lays a text out and prints it with another one at the right of the same line. */
static void printPair(const char *left, const char *right, int32_t justify) {
    char line[TEXT_LINE], end[TEXT_LINE], whole[COLUMNS + 1];
    const int32_t room = COLUMNS - (int32_t)strlen(right);
    Text_LayoutLine(line, left, (int32_t)strlen(left), justify, 0, room);
    Text_LayoutLine(end, right, (int32_t)strlen(right), TEXT_RIGHT, room, COLUMNS);
    snprintf(whole, sizeof whole, "%.*s%.*s", (int)room, line, (int)(COLUMNS - room), end);
    for (size_t length = strlen(whole); length > 0 && whole[length - 1] == ' '; --length)
        whole[length - 1] = 0; /* blanks at the end take the printer's time */
    printLine(whole);
}

static void printGood(const Good *good, int32_t count) {
    if (count == 0)
        return;
    printPair(text(good->name), "", TEXT_LEFT);
    char pieces[TEXT_SIZE];
    snprintf(pieces, sizeof pieces, "  %d x %s", (int)count, plainMoney(good->cents));
    printPair(pieces, plainMoney(count * good->cents), TEXT_LEFT);
}

static int32_t print(const Sale *sale) {
    char date[16], time[16];
    snprintf(date, sizeof date, "%02u.%02u.%d", sale->date.day, sale->date.month, sale->date.year);
    snprintf(time, sizeof time, "%02u:%02u", sale->time.hour, sale->time.minute);
    char number[16];
    snprintf(number, sizeof number, "%d", (int)sale->number);

    printPair(text(SHOP_SHOP_NAME), "", TEXT_CENTER);
    printPair(text(SHOP_SHOP_PLACE), "", TEXT_CENTER);
    printPair(date, time, TEXT_LEFT);
    printPair(joined(text(SHOP_RECEIPT_NUMBER), number), "", TEXT_LEFT);
    printLine("--------------------------------");
    for (int i = 0; i < GOODS; ++i)
        printGood(&goods[i], sale->counts[i]);
    if (sale->other > 0)
        printPair(text(SHOP_OTHER), plainMoney(sale->other), TEXT_LEFT);
    printLine("================================");
    printPair(text(SHOP_TOTAL), money(totalOf(sale)), TEXT_LEFT);
    printPair(text(SHOP_RECEIPT_PAID), "", TEXT_LEFT);
    if (sale->isSigned)
        printPair(text(SHOP_RECEIPT_SIGNED), "", TEXT_LEFT);
    if (sale->phone[0])
        printPair(text(SHOP_RECEIPT_PHONE), joined("+7", sale->phone), TEXT_LEFT);
    printPair(text(SHOP_RECEIPT_END), "", TEXT_CENTER);
    printLine("");
    return result;
}

static int32_t printOnce(const Sale *sale) {
    static const uint8_t parameters[36];
    result = Printer_Open(parameters);
    if (result != 0)
        return result;
    print(sale);
    Printer_Close();
    return result;
}

void printReceipt(const Sale *sale) {
    int32_t failure;
    while ((failure = printOnce(sale)) != 0) {
        TraceExError(SHOP_MODULE, SHOP_PRINTER_FAILED, Long, failure, 0);
        const DialogRequest request =
            requestFor(SHOP_ASK_PAPER, SHOP_NO_PAPER, text(SHOP_NO_PAPER_TEXT));
        if (confirm("ASK_PAPER", &request, SHOP_RETRY, SHOP_SKIP) != UTI_OK)
            return;
    }
}
