#include <stdio.h>

/* <@text:anchor#overview> */
#define DEFAULT_WIDTH 12 /* <@control:slider#width [22,24] {"min":1,"max":40}> */
#define COLUMNS 3

struct column {
  const char *title;
  unsigned width;
};

static const struct column columns[COLUMNS] = {
    {"name", DEFAULT_WIDTH}, {"size", 8}, {"date", DEFAULT_WIDTH}};

int main(void) {
  unsigned total = 2 * (COLUMNS - 1);
  /* <@task#sum> */
  for (int i = 0; i < COLUMNS; ++i)
    total += columns[i].width; // <@output#total [4,9] {"format":"short"}>
  /* <@task#sum> */
  printf("%d columns, %u characters\n", COLUMNS, total);
  return 0;
}
/** <@appendix> */
/** <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}> */
