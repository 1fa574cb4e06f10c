/* modem.c: a USSD request over the serial port, step by step while a dialog is shown. */
#include "modem.h"

#include "screen.h"

#include <string.h>

enum { REPEAT_AFTER = 3000 }; /* milliseconds without an answer */

static const char wakeUp[] = "AT\r";
static const char askForBalance[] = "AT+CUSD=1,\"*100#\",15\r";

static struct {
    int32_t port;
    const char *command; /* what was sent last */
    uint32_t sentAt;
    char received[600];
    uint32_t length;
} line;

static int32_t send(const char *command) {
    const uint32_t length = (uint32_t)strlen(command);
    char shown[TEXT_SIZE] = "";
    memcpy(shown, command, length - 1); /* without the carriage return */
    TraceExDebug(SHOP_MODULE, SHOP_MODEM_SENT, String, shown, 0);
    line.command = command;
    line.sentAt = GetTicks();
    return ComPort_Write(line.port, command, length) == (int32_t)length;
}

/* Appends what has come. What does not fit is no answer to any of our commands. */
static int32_t receive(void) {
    const uint32_t room = (uint32_t)sizeof line.received - 1 - line.length;
    const int32_t count =
        room > 0 ? ComPort_Read(line.port, line.received + line.length, room, 0) : 0;
    if (count < 0)
        return 0;
    line.length += (uint32_t)count;
    line.received[line.length] = 0;
    return 1;
}

static int32_t hasAnswer(void) {
    if (line.command == wakeUp)
        return strstr(line.received, "OK") != NULL;
    const char *answer = strstr(line.received, "+CUSD:");
    return answer && strchr(answer, '\r');
}

/* With a line that fails the work is done at once, without an answer. */
static void talk(Work *work) {
    if (!line.command) {
        work->step = SHOP_STEP_MODEM;
        work->percent = 10;
        work->isDone = !send(wakeUp);
        return;
    }
    if (!receive()) {
        work->isDone = 1;
    } else if (hasAnswer() && line.command == wakeUp) {
        work->step = SHOP_STEP_ASK;
        work->percent = 50;
        work->isDone = !send(askForBalance);
    } else if (hasAnswer()) {
        work->percent = 100;
        work->isDone = 1;
    } else if (GetTicks() - line.sentAt >= REPEAT_AFTER) {
        work->isDone = !send(line.command);
    }
}

static int32_t failed(int32_t code) {
    TraceExError(SHOP_MODULE, SHOP_MODEM_FAILED, Long, code, 0);
    return code;
}

int32_t askBalance(char *answer, int32_t size) {
    const ComPortParameters parameters = {.port = 1, .speed = 9, .format = 4};
    memset(&line, 0, sizeof line);
    memset(answer, 0, (size_t)size);
    line.port = ComPort_Open(&parameters);
    if (line.port < 0)
        return failed(line.port);

    int32_t result = doWork("WORK", SHOP_NETWORK, "images/network.png", talk);
    ComPort_Close(line.port);
    if (result != UTI_OK)
        return failed(result);
    result = UTILS_ParseUSSDResponse(line.received, line.length, answer, size);
    if (result < 0)
        return failed(result);
    TraceExSupport(SHOP_MODULE, SHOP_MODEM_ANSWERED, String, answer, 0);
    return UTI_OK;
}
