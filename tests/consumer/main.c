/*
 * A program of a stranger: it knows the installed headers and library, and nothing of the tree.
 */
#include <stdio.h>
#include <string.h>
#include <zkr13n.h>

int main(void) {
    const char* text = Z_GetErrorText(-1);
    if (text == NULL || strlen(text) == 0) {
        fprintf(stderr, "the library does not know its own message for -1\n");
        return 1;
    }
    return 0;
}
