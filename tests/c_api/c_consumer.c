/* The public headers compile as strict C11 and the library links from C. */
#include <stdio.h>
#include <string.h>

#include "vkpch.h"
#include "vkpcore.h"

int main(void) {
    const vkpLibraryVersion* v = vkpchGetLibVersion();
    const vkp8u text[] = "needle in a haystack";
    const vkp8u needle[] = "hay";
    int index = -2;
    vkpStatus st = vkpsFind_8u(text, (int)strlen((const char*)text), needle, 3, &index);
    if (v == NULL || v->major != 8 || st != VKP_OK || index != 12) {
        fprintf(stderr, "unexpected: status %d index %d\n", st, index);
        return 1;
    }
    if (vkpsFindC_8u(NULL, 1, 'a', &index) != VKP_ERR_NULL) return 1;
    printf("%s: features 0x%llx\n", v->name, vkpGetEnabledCpuFeatures());
    return 0;
}
