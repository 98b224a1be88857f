/* A model that does what its parameter string names: some of what models of all makers do to the
 * program that loads them. Built three more times: without AMI_Close, without AMI_Init, and with a
 * crash while it is loaded. */
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static char s_message[64];
static int s_crashInClose;
static int* volatile s_nowhere; /* read anew, so that the compiler does not know it to be null */

static void crash(void)
{
    *s_nowhere = 1;
}

#ifdef CRASH_WHEN_LOADED
__attribute__((constructor)) static void loaded(void)
{
    crash();
}
#endif

#ifndef NO_INIT
static char s_out[] = "(test_model (answer 42))";

static int asked(const char* parameters, const char* behaviour)
{
    return strstr(parameters, behaviour) != NULL;
}

long AMI_Init(double* matrix, long rows, long aggressors, double interval, double bitTime,
              char* parameters, char** out, void** handle, char** message)
{
    const long size = rows * (aggressors + 1);
    long n;
    (void)interval;
    (void)bitTime;
    *handle = s_message;
    if (asked(parameters, "halve"))
        for (n = 0; n < size; ++n)
            matrix[n] *= 0.5;
    if (asked(parameters, "speak")) {
        snprintf(s_message, sizeof s_message, "%ld rows, \xff, %ld aggressors", rows, aggressors);
        *message = s_message;
        *out = s_out;
    }
    if (asked(parameters, "print")) {
        printf("{ \"unit\": \"mm\" }\n");
        fprintf(stderr, "to stderr\n");
    }
    if (asked(parameters, "no_numbers")) matrix[0] = 0.0 / (double)(rows * 0);
    if (asked(parameters, "overrun")) matrix[size] = 1;
    if (asked(parameters, "wild_message")) *message = (char*)16;
    if (asked(parameters, "leave_child") && fork() == 0) sleep(1000);
    if (asked(parameters, "crash_init")) crash();
    if (asked(parameters, "crash_close")) s_crashInClose = 1;
    if (asked(parameters, "abort")) abort();
    if (asked(parameters, "exit")) exit(7);
    if (asked(parameters, "stop")) raise(SIGSTOP);
    if (asked(parameters, "hang"))
        for (;;)
            pause();
    if (asked(parameters, "flood"))
        for (;;)
            printf("a model that never ends to talk\n");
    if (asked(parameters, "two")) return 2;
    return asked(parameters, "fail") ? 0 : 1;
}
#endif

#ifndef NO_CLOSE
long AMI_Close(void* handle)
{
    /* The handle is ours only when AMI_Init was told so. */
    if (handle != s_message || s_crashInClose) crash();
    return 1;
}
#endif
