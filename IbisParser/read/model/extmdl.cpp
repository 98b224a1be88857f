// The ports of an [External Model]: which a Model_type needs, and which mean nothing to it.
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/mdl.h"
#include "IbisParser/read/model/ext.h"

// Kinds of model that a reserved port serves.
enum PortUse {
    USE_SIGNAL = 1,  // single-ended buffers and terminators
    USE_DIFFERENTIAL = 2,
    USE_SERIES = 4,
    USE_DRIVER = 8,
    USE_FLOATING = 16,
    USE_RECEIVER = 32,
    USE_SWITCH = 64,
    USE_SUPPLY = 128,  // all but the series types
    USE_ANY = 256
};

static const struct ReservedPort {
    const char* name;
    unsigned use;
    int isRequired;
    int isDigital;
} s_ports[] = {
    {"A_signal", USE_SIGNAL, 1, 0},
    {"A_signal_pos", USE_DIFFERENTIAL, 1, 0},
    {"A_signal_neg", USE_DIFFERENTIAL, 1, 0},
    {"A_pos", USE_SERIES, 1, 0},
    {"A_neg", USE_SERIES, 1, 0},
    {"D_drive", USE_DRIVER, 1, 1},
    {"D_enable", USE_FLOATING, 1, 1},
    {"D_receive", USE_RECEIVER, 1, 1},
    {"D_switch", USE_SWITCH, 1, 1},
    {"A_puref", USE_SUPPLY, 0, 0},
    {"A_pdref", USE_SUPPLY, 0, 0},
    {"A_pcref", USE_SUPPLY, 0, 0},
    {"A_gcref", USE_SUPPLY, 0, 0},
    {"A_extref", USE_SUPPLY, 0, 0},
    {"A_gnd", USE_ANY, 0, 0},
};

static const ReservedPort* s_reserved(const char* name)
{
    for (const ReservedPort& port : s_ports)
        if (std::strcmp(port.name, name) == 0) return &port;
    return nullptr;
}

static unsigned s_usesOf(const MdlTypeInfo* type)
{
    const int isSwitch = type->group == MDL_GROUP_SERIES_SWITCH;
    if (isSwitch || type->group == MDL_GROUP_SERIES)
        return USE_ANY | USE_SERIES | (isSwitch ? unsigned{USE_SWITCH} : 0U);
    unsigned uses = USE_ANY | USE_SUPPLY;
    uses |= type->differential ? unsigned{USE_DIFFERENTIAL} : unsigned{USE_SIGNAL};
    if (type->drives) uses |= USE_DRIVER;
    if (type->floats) uses |= USE_FLOATING;
    if (type->receives) uses |= USE_RECEIVER;
    return uses;
}

static void s_checkNeeds(const Mdl* model, const Ext* item, const MdlTypeInfo* type)
{
    const unsigned uses = s_usesOf(type);
    for (const ReservedPort& port : s_ports) {
        if (!port.isRequired || (port.use & uses) == 0) continue;
        if (port.isDigital && EXT_IsAnalog(item)) {
            if (!EXT_HasConversion(item, port.name))
                ERRLOG_LineErrorNew(3446, model->name,
                                    port.use == USE_RECEIVER ? "A_to_D" : "D_to_A", port.name);
        } else if ((!port.isDigital || EXT_IsDigital(item)) && !EXT_HasPort(item, port.name)) {
            ERRLOG_LineErrorNew(3443, model->name, type->name, port.name);
        }
    }
}

static void s_checkMeaning(const Mdl* model, const MdlTypeInfo* type, const char* name)
{
    const ReservedPort* port = s_reserved(name);
    if (port != nullptr && (port->use & s_usesOf(type)) == 0)
        ERRLOG_LineWarnNew(3444, model->name, type->name, name);
}

static void s_checkPorts(const Mdl* model, const Ext* item, const MdlTypeInfo* type)
{
    SecSet converted = {};
    for (const ExtConversion* row = item->conversions; row != nullptr; row = row->next) {
        const PlaceScope at(row);
        if (type != nullptr && !EXT_HasPort(item, row->digital) &&
            !SEC_SetHas(&converted, row->digital))
            s_checkMeaning(model, type, row->digital);
        for (const char* name : {row->digital, row->port1, row->port2})
            SEC_SetAdd(&converted, name);
    }
    for (const ExtName* port = item->ports; port != nullptr; port = port->next) {
        const PlaceScope at(port);
        if (s_reserved(port->name) != nullptr) {
            if (type != nullptr) s_checkMeaning(model, type, port->name);
        } else if (!SEC_SetHas(&converted, port->name)) {
            ERRLOG_LineErrorNew(3445, model->name, port->name);
        }
    }
}

void EXT_CheckModel(const Mdl* model, const Ext* item)
{
    const MdlTypeInfo* type = MDL_TypeInfo(model->type);
    if (type != nullptr) s_checkNeeds(model, item, type);
    s_checkPorts(model, item, type);
}
