// Ids of sample.rc. Only the directives of a header count; the rest is C.
#ifndef SAMPLE_H
#define SAMPLE_H

/* A block comment over lines,
#define NOT_A_DEFINITION 1
   ends here. */
#define SAMPLE_LEVEL 2  // picks a branch in the script
#define PICKED_ID (TEXT_BASE + 7)
#define IDD_EXTENDED 1

int NotReadByTheResourceCompiler(const char* s, int n);

#endif
