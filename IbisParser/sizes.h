/* Characters that the names and texts of the records hold, terminator excluded. These are the
 * widest limits of all IBIS versions; what a file may use depends on its version. */
#ifndef IBISPARSER_SIZES_H
#define IBISPARSER_SIZES_H

enum {
    SIZE_NAME = 40,        /* component, model, package, board and circuit names, makers, ports */
    SIZE_PIN = 5,          /* pin of a component */
    SIZE_BUS = 15,         /* bus label of a pin mapping */
    SIZE_GROUP = 20,       /* function table group, EMI domain */
    SIZE_DESCRIPTION = 60, /* description of a package model */
    SIZE_SELECTION = 120,  /* description of a selector's model */
    SIZE_BOARD_PIN = 8,
    SIZE_REFDES = 10
};

#endif
