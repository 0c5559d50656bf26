/* Children that may die, and threads with stacks of a chosen size. */
#ifndef FILTERPROCESSOR_TESTS_HOSTS_ISOLATION_H
#define FILTERPROCESSOR_TESTS_HOSTS_ISOLATION_H

#include <stdbool.h>
#include <stddef.h>

/* Runs `body` in a child of this process. Returns what it said was wrong, or how the child died; null when all is well.
 * What `body` says is a constant of the program, and what it prints is lost. */
const char* in_child(const char* (*body)(void* argument), void* argument);
/* Prints the complaint of a child, if it has one. Returns whether it has. */
bool complains(const char* title, const char* complaint);
/* Ends the child that calls it as the end of its body does. */
_Noreturn void end_child(const char* complaint);

/* Memory that children share with this process, zero-filled. */
void* shared_memory(size_t size);

/* Runs `body` on a fresh thread with a stack of `size` bytes and nothing below it. Returns the bytes that were used, the C
 * library's own among them. */
size_t on_stack(size_t size, void (*body)(void* argument), void* argument);

#endif
