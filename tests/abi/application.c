/* An application in C that supplies nothing of its own: the library's stand-ins for the platform write its log to
 * stderr and read its properties from the environment. */
#define _POSIX_C_SOURCE 200809L
#include <ondrix.h>

#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

/* The enumerations cross the interface as 32 bits. */
typedef char statusHas32Bits[sizeof(odxStatus) == 4 ? 1 : -1];
typedef char modeHas32Bits[sizeof(odxOperationMode) == 4 ? 1 : -1];
typedef char borderHas32Bits[sizeof(odxBorderType) == 4 ? 1 : -1];

/* Versions compare at compile time. */
typedef char versionsCompare[ONDRIX_VERSION > ONDRIX_VERSION_NUMBER(1, 6, 999) ? 1 : -1];

static int failures = 0;

static void expect(int condition, const char* what)
{
    if (condition) return;
    printf("failed: %s\n", what);
    failures = failures + 1;
}

static void expectLog(int reader, const char* expected)
{
    char text[1024];
    const ssize_t length = read(reader, text, sizeof text - 1);
    text[length > 0 ? length : 0] = '\0';
    if (strcmp(text, expected) == 0) return;
    printf("logged \"%s\" instead of \"%s\"\n", text, expected);
    failures = failures + 1;
}

int main(void)
{
    const uint8_t bytes[3] = {0xFF, 0x01, 0x80};
    char version[6] = "";
    int pipeEnds[2];

    if (pipe(pipeEnds) != 0 || dup2(pipeEnds[1], STDERR_FILENO) < 0) return 2;
    fcntl(pipeEnds[0], F_SETFL, O_NONBLOCK);

    expect(odxBitCountu8(bytes, 3) == 0, "no mode is selected yet");
    expectLog(pipeEnds[0], "E/ondrix_lib_log: No operation mode selected @odxBitCountu8\n");

    odxGetVersion(version, sizeof version);
    expect(strcmp(version, ONDRIX_VERSION_TEXT) == 0, "version");
    expectLog(pipeEnds[0], "D/ondrix_lib_log: Ondrix vendor library\n"); /* brings its line feed along */

    expect(odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE) == 0, "selection");
    expect(odxBitCountu8(bytes, 3) == 10, "bit count");
    expectLog(pipeEnds[0], "E/ondrix_runtime_log: odxBitCountu8_CPU\n");
    expect(odxCleanUp() == 0, "clean-up");
    return failures == 0 ? 0 : 1;
}
