// External circuits and models against the document: ports and who wires them, calls, files.
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/companions.h"
#include "IbisParser/check/component.h"
#include "IbisParser/cmn.h"
#include "IbisParser/ext.h"
#include "IbisParser/nml.h"
#include "IbisParser/read/model/ext.h"

static const char s_Module[] = "IbisParser/ext";

void EXT_FindWired(Ext* item)
{
    CMN_ASSERT(item != nullptr);
    SecSet inside;
    for (const ExtConversion* row = item->conversions; row != nullptr; row = row->next)
        for (const char* name : {row->digital, row->port1, row->port2})
            SEC_SetAdd(&inside, name);
    ExtName** link = &item->wired;
    for (ExtName* port = item->ports; port != nullptr; port = port->next)
        if (std::strncmp(port->name, "D_", 2) != 0 && !SEC_SetHas(&inside, port->name)) {
            *link = port;
            link = &port->nextWired;
        }
    *link = nullptr;
}

static void s_testFiles(const char* keyword, const Ext* item)
{
    for (const ExtCornerRow* row = item->corners; row != nullptr; row = row->next) {
        const PlaceScope at(row);
        const PlaceScope in(row->corner);
        if (row->file != nullptr && !COMPANION_Exists(row->file))
            ERRLOG_WarnNew(3418, keyword, item->name, row->file);
    }
}

int EXT_TestList(Ext* externals, const Cmpnt* components)
{
    EXT_CloseCircuit();
    NML_CheckUnique(externals, offsetof(Ext, name), offsetof(Ext, next), "External Circuit");
    SecSet called;
    for (; components != nullptr; components = components->next)
        for (const Circuit* call = components->calls; call != nullptr; call = call->next)
            SEC_SetAdd(&called, call->name);
    for (const Ext* item : SecFileOrder<const Ext>(externals)) {
        const PlaceScope at(SUBJECT_CIRCUIT, item);
        s_testFiles("External Circuit", item);
        // A circuit without a name was reported as that.
        if (item->name[0] != '\0' && !SEC_SetHas(&called, item->name))
            ERRLOG_WarnNew(3718, item->name);
    }
    return 1;
}

int EXT_MdlTest(const Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (model->external == nullptr) return 1;
    const PlaceScope at(model->external);
    s_testFiles("External Model", model->external);
    if (model->externalRef != nullptr) return 1;
    for (const ExtName* port = model->external->ports; port != nullptr; port = port->next)
        if (std::strcmp(port->name, "A_extref") == 0) {
            const PlaceLogged in(port);
            ERRLOG_LineNoteNew(3447, model->name);
        }
    return 1;
}

// What a component's calls use, and what was told of them.
struct CallUse {
    const Cmpnt* component;
    SecSet nodes;  // declared
    SecSet used;   // nodes and pins
    SecSet told;   // pins
};

static void s_usePin(CallUse* use, const Pin* pin)
{
    const PlaceScope at(SUBJECT_PIN, pin);
    SEC_SetAdd(&use->used, SEC_WholeName(pin));
    const bool isFree =
        pin->kind == PIN_CIRCUITCALL || pin->kind == PIN_POWER || pin->kind == PIN_GND;
    if (!isFree && SEC_SetAdd(&use->told, SEC_WholeName(pin)))
        ERRLOG_ErrorNew(3717, use->component->name, pin->name, pin->model);
}

static void s_testPorts(CallUse* use, const Circuit* call, const Ext* circuit)
{
    SecSet mapped;
    for (const CircuitPort* port = call->ports; port != nullptr; port = port->next) {
        const PlaceScope at(port);
        const char* name = port->longPort != nullptr ? port->longPort : port->port;
        SEC_SetAdd(&mapped, name);
        if (circuit != nullptr && !EXT_HasPort(circuit, name))
            ERRLOG_ErrorNew(3714, use->component->name, call->name, name);
        const Pin* pin = CMPNT_FindPin(use->component, port->node);
        if (pin != nullptr)
            s_usePin(use, pin);
        else if (SEC_SetHas(&use->nodes, port->node))
            SEC_SetAdd(&use->used, port->node);
        else
            ERRLOG_ErrorNew(3716, use->component->name, port->node);
    }
    for (const ExtName* port = circuit != nullptr ? circuit->wired : nullptr; port != nullptr;
         port = port->nextWired)
        if (!SEC_SetHas(&mapped, SEC_WholeName(port)))
            ERRLOG_WarnNew(3715, use->component->name, port->name, call->name);
}

static void s_testCall(CallUse* use, const Circuit* call, const Ext* circuit)
{
    const PlaceScope at(call);
    if (circuit == nullptr && call->name[0] != '\0')
        ERRLOG_ErrorNew(3713, use->component->name, call->name);
    for (const Pin* pin : call->pins)
        if (pin != nullptr) s_usePin(use, pin);
    s_testPorts(use, call, circuit);
}

void CIRCUIT_Test(const Cmpnt* component, const SecNameIndex<const Ext>& externals)
{
    CallUse use = {component, {}, {}, {}};
    for (const Node* node = component->nodes; node != nullptr; node = node->next)
        SEC_SetAdd(&use.nodes, node->name);
    for (const Circuit* call = component->calls; call != nullptr; call = call->next)
        s_testCall(&use, call, externals.Find(call->name));
    for (const Node* node = component->nodes; node != nullptr; node = node->next) {
        const PlaceScope at(SUBJECT_NODE, node);
        if (!SEC_SetHas(&use.used, node->name)) ERRLOG_WarnNew(2908, component->name, node->name);
    }
    // Earlier versions do not know the word, which was reported.
    if (SEC_Version() < 4) return;
    for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
        const PlaceScope at(SUBJECT_PIN, pin);
        if (pin->kind == PIN_CIRCUITCALL && !pin->repeated &&
            !SEC_SetHas(&use.used, SEC_WholeName(pin)))
            ERRLOG_ErrorNew(537, component->name, pin->name);
    }
}
