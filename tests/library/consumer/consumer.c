#include <stdio.h>
#include <string.h>

#include <filterprocessor/filter_processor.h>

int main(void) {
  if (zv_get_filter_count() != 9 || strcmp(zv_get_filter_name(1), "HoleFillingFilter") != 0) return 1;
  return strlen(zv_get_commit_hash()) == 7 ? 0 : 1;
}
