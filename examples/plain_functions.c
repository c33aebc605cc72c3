/* The library from C: only vel_c.h, only plain functions. */
#include <stdio.h>
#include <string.h>
#include <vel_c.h>

static const char* const texts[] = {"[VEL_MSGTAB_SIGNATURE] 3", "[EXAMPLE]", "%1 weighs %2 bytes"};

int main(void) {
  char number[12];
  unsigned int length = velULtoa((unsigned long)strlen("qamc5032"), number);
  VelMsgCatHandle catalog = velMsgCatOpenOrUseStringTable("example", texts, 3);
  char* copy = (char*)velMalloc(length + 1);
  memcpy(copy, number, length + 1);

  printf("level    %s\n", velLibraryGetLevel());
  printf("message  %s\n", velMsgCatGetVar(catalog, 2, "qamc5032", copy, (const char*)0));
  printf("error 5  %s\n", velWinGetErrorAsString(5));
  printf("id       %u\n", velErrorGetIdAsMessageId(FILE_COULD_NOT_COPY));
  printf("matches  %d\n", velMatchesWildcardPattern("*.INI", "tool.ini", false));

  velFree(copy);
  velMsgCatClose(catalog);
  return 0;
}
