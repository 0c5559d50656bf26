/* The host has a locale with a decimal comma: texts mean what they mean without it. */
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "plugin.h"

static uint64_t try_in(const char* locale, const struct plugin* plugin, const struct filter_case* what) {
  setlocale(LC_ALL, locale);
  return try_case(plugin, what, 64, 48);
}

int main(int argc, char** argv) {
  if (argc != 3) return 2; /* PLUGIN LOCALE */
  struct plugin plugin;
  if (!open_plugin(&plugin, argv[1], RTLD_NOW)) return puts(dlerror()), 1;
  if (setlocale(LC_ALL, argv[2]) == NULL || strtod("0.5", NULL) != 0)
    return puts("no locale with a comma"), 1;
  int wrong = 0;
  for (size_t i = 0; i < filter_case_count; ++i) {
    const uint64_t expected = try_in("C", &plugin, &filter_cases[i]);
    if (expected != 0 && try_in(argv[2], &plugin, &filter_cases[i]) == expected) continue;
    ++wrong, printf("%s: \"%s\" is read in another way\n", filter_cases[i].name, filter_cases[i].values);
  }
  if (strcmp(setlocale(LC_ALL, NULL), argv[2]) != 0) ++wrong, puts("the process's locale has changed");
  return wrong != 0;
}
