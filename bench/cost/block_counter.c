/* A plug-in for qemu's user emulation: how often each block of instructions ran between two marks of the program. The
 * program marks a stretch by closing the file -1000 - number, and its end by closing the file -999. Each block is a
 * line of the file given as out=FILE: number, address, instructions, times. */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* What is used of the emulator's interface; Debian does not package its header. */
typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
typedef void (*Translated)(qemu_plugin_id_t id, struct qemu_plugin_tb* block);
typedef void (*SystemCall)(qemu_plugin_id_t id, unsigned processor, int64_t number, uint64_t first,
                           uint64_t, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t);
extern size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
extern uint64_t qemu_plugin_tb_vaddr(const struct qemu_plugin_tb* block);
extern void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, Translated callback);
extern void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t id, SystemCall callback);
enum { kAdd = 0 };
extern void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation,
                                                     void* counter, uint64_t by);
int qemu_plugin_version = 1;

enum { kCloseOnArm64 = 57, kEnd = -999 };

typedef struct Block {
  uint64_t address, instructions, times, before;
  struct Block* next;
} Block;

static Block* blocks;
static FILE* out;
static int64_t stretch = kEnd;

static void translated(qemu_plugin_id_t id, struct qemu_plugin_tb* translation) {
  (void)id;
  Block* block = calloc(1, sizeof *block);
  if (block == NULL) abort();
  block->address = qemu_plugin_tb_vaddr(translation);
  block->instructions = qemu_plugin_tb_n_insns(translation);
  block->next = blocks;
  blocks = block;
  qemu_plugin_register_vcpu_tb_exec_inline(translation, kAdd, &block->times, 1);
}

static void called(qemu_plugin_id_t id, unsigned processor, int64_t number, uint64_t first, uint64_t b,
                   uint64_t c, uint64_t d, uint64_t e, uint64_t f, uint64_t g, uint64_t h) {
  (void)id, (void)processor, (void)b, (void)c, (void)d, (void)e, (void)f, (void)g, (void)h;
  const int64_t mark = (int32_t)first;
  if (number != kCloseOnArm64 || mark > kEnd) return;
  for (Block* block = blocks; block != NULL; block = block->next) {
    const uint64_t times = block->times - block->before;
    block->before = block->times;
    if (stretch != kEnd && times != 0) {
      fprintf(out, "%" PRId64 " %" PRIx64 " %" PRIu64 " %" PRIu64 "\n", -1000 - stretch, block->address,
              block->instructions, times);
    }
  }
  stretch = mark;
  fflush(out);
}

int qemu_plugin_install(qemu_plugin_id_t id, const void* info, int count, char** arguments);
int qemu_plugin_install(qemu_plugin_id_t id, const void* info, int count, char** arguments) {
  (void)info;
  if (count != 1 || strncmp(arguments[0], "out=", 4) != 0) return 1;
  out = fopen(arguments[0] + 4, "w");
  if (out == NULL) return 1;
  qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
  qemu_plugin_register_vcpu_syscall_cb(id, called);
  return 0;
}
