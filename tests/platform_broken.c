/* platform_broken.c: ten promises of the platform broken, each as a terminal might break it. Linked
 * into a program, these functions come before those of the platform, which they call. */
#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include "terminal.h"
#include "toolkit.h"

#include <dlfcn.h>
#include <signal.h>
#include <string.h>

#define REAL(name) ((__typeof__(&(name)))(uintptr_t)dlsym(RTLD_NEXT, #name))

/* Keeps what a created file held. */
int32_t File_Open(const char *path, int32_t mode) {
    return REAL(File_Open)(path, mode == FILE_MODE_CREATE ? FILE_MODE_APPEND : mode);
}

/* Takes the end of a file for a failure. */
int32_t File_Read(int32_t handle, void *buffer, uint32_t count) {
    const int32_t done = REAL(File_Read)(handle, buffer, count);
    return done == 0 && count > 0 ? -1 : done;
}

/* Any other number for yes. */
int32_t File_IsValid(const char *path) {
    return -REAL(File_IsValid)(path);
}

/* Does not wait. */
void Wait(uint32_t milliseconds) {
    REAL(Wait)(milliseconds / 300);
}

/* Has no room for the terminating zero. */
int32_t System_GetEnv(const char *name, char *buffer, int32_t size, int32_t flags) {
    return REAL(System_GetEnv)(name, buffer, size + 1, flags);
}

/* The two words the other way round. */
double BufferToDouble(const void *buffer) {
    char words[8];
    memcpy(words, (const char *)buffer + 4, 4);
    memcpy(words + 4, buffer, 4);
    return REAL(BufferToDouble)(words);
}

/* Does not cut. */
char *Int64ToStr(int64_t value, char *out, uint32_t size) {
    return REAL(Int64ToStr)(value, out, size < 21 ? 21 : size);
}

/* 0 for success. */
int32_t ComPort_Write(int32_t handle, const void *buffer, uint32_t count) {
    const int32_t sent = REAL(ComPort_Write)(handle, buffer, count);
    return sent > 0 ? 0 : sent;
}

/* Counts from 0. */
int32_t igMenuBox_GetSelected(int32_t menu) {
    const int32_t selected = REAL(igMenuBox_GetSelected)(menu);
    return selected > 0 ? selected - 1 : selected;
}

/* Does not look at the handle. */
int32_t igWidget_SetFont(int32_t widget, uint16_t font) {
    if (widget <= 0)
        raise(SIGSEGV);
    return REAL(igWidget_SetFont)(widget, font);
}
