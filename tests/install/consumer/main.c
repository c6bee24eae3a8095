#include <stdio.h>

#include "vkpch.h"

int main(void) {
    const vkp8u text[] = "abcabc";
    int index = -2;
    if (vkpsFindRevC_8u(text, 6, 'b', &index) != VKP_OK || index != 4) return 1;
    printf("%s\n", vkpchGetLibVersion()->version);
    return 0;
}
