/* [Node Declarations]: nodes of the die that circuit calls join. */
#ifndef IBISPARSER_NODE_H
#define IBISPARSER_NODE_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

typedef struct Node Node;
struct Node {
    Node* next; /* file order */
    char name[SIZE_NAME + 1];
    unsigned long line;
};

/* line is the text after the keyword or the data line. */
int NODE_Begin(Cmpnt* component, const char* line);
int NODE_ReceiveLine(Cmpnt* component, const char* line);
int NODE_End(Cmpnt* component);
/* The end of the block by another keyword, when it is open: error 2906. */
int NODE_Fini(Cmpnt* component);
Node* NODE_Find(Node* head, const char* name);
void NODE_FreeList(Node* head);

IBIS_END_DECLS

#endif
