/* A plugin of QEMU's user mode: counts the instructions that a program executes between two marks.
   The program marks the start by syscall(0x4F44, 0) and the end by syscall(0x4F44, 1), which no system knows; then
   the count goes to the standard output, as a line. What is declared here is QEMU's plugin interface, version 1:
   distributions do not package its header. */
#include <inttypes.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };
typedef void (*translation_function)(qemu_plugin_id_t, struct qemu_plugin_tb*);
typedef void (*syscall_function)(qemu_plugin_id_t, unsigned vcpu, int64_t number, uint64_t, uint64_t, uint64_t,
                                 uint64_t, uint64_t, uint64_t, uint64_t, uint64_t);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t, translation_function);
void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t, syscall_function);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb*);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb*, enum qemu_plugin_op, void*, uint64_t);

EXPORT int qemu_plugin_version = 1;

static const int64_t kMark = 0x4F44;
static uint64_t executed, start;

/* Each run of a translated block adds the block's instructions. */
static void onTranslation(qemu_plugin_id_t id, struct qemu_plugin_tb* block)
{
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, QEMU_PLUGIN_INLINE_ADD_U64, &executed,
                                             qemu_plugin_tb_n_insns(block));
}

static void onSyscall(qemu_plugin_id_t id, unsigned vcpu, int64_t number, uint64_t end, uint64_t b, uint64_t c,
                      uint64_t d, uint64_t e, uint64_t f, uint64_t g, uint64_t h)
{
    char line[32];
    (void)id, (void)vcpu, (void)b, (void)c, (void)d, (void)e, (void)f, (void)g, (void)h;
    if (number != kMark) return;
    if (end == 0) {
        start = executed;
        return;
    }
    snprintf(line, sizeof line, "%" PRIu64 "\n", executed - start);
    if (write(STDOUT_FILENO, line, strlen(line)) < 0) _exit(1);
}

EXPORT int qemu_plugin_install(qemu_plugin_id_t id, const void* info, int argc, char** argv)
{
    (void)info, (void)argc, (void)argv;
    qemu_plugin_register_vcpu_tb_trans_cb(id, onTranslation);
    qemu_plugin_register_vcpu_syscall_cb(id, onSyscall);
    return 0;
}
