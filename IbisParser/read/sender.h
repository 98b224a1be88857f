// The sender: the way of a line to its section.
#ifndef IBISPARSER_READ_SENDER_H
#define IBISPARSER_READ_SENDER_H

// Sends a line of a LineKind, without comment and trailing blanks, to the section that owns it.
void SENDER_Send(int kind, char* line);

#endif
