#include <cstdlib>
#include <new>

#include "type_info.h"

namespace quorvane::platform {
namespace {

// A description, its parameters and what pointer types point to.
struct Block {
    FUNCDESC function;
    ELEMDESC parameters[16];
    TYPEDESC targets[40];
    std::size_t targetCount;
};

constexpr std::size_t kMostParameters = std::size(Block{}.parameters);

void DescribeType(const TypeReference& type, BYTE pointers, TYPEDESC& description, Block& block) {
    if (pointers > 0) {
        TYPEDESC& target = block.targets[block.targetCount++];
        description.vt = VT_PTR;
        description.lptdesc = &target;
        DescribeType(type, static_cast<BYTE>(pointers - 1), target, block);
        return;
    }
    description.vt = type.type;
    if (type.type == VT_USERDEFINED) {
        description.hreftype = ReferenceTo(type.index, TypeInfo::Side::Dispatch);
    }
}

// Callers through IDispatch get the result where the function has its status.
void DescribeResult(const FunctionData& function, TypeInfo::Side side, Block& block) {
    const bool hasResult =
        !function.parameters.empty() && (function.parameters.back().flags & PARAMFLAG_FRETVAL);
    TYPEDESC& description = block.function.elemdescFunc.tdesc;
    if (side == TypeInfo::Side::Table || function.slot < 0) {
        DescribeType(function.result, function.result.pointers, description, block);
    } else if (hasResult) {
        const TypeReference& result = function.parameters.back().type;
        DescribeType(result, static_cast<BYTE>(result.pointers - 1), description, block);
        --block.function.cParams;
    } else {
        description.vt = VT_VOID;
    }
}

}  // namespace

FUNCDESC* DescribeFunction(const FunctionData& function, TypeInfo::Side side) {
    if (function.parameters.size() > kMostParameters) return nullptr;
    auto* const block = new (std::nothrow) Block{};
    if (!block) return nullptr;
    FUNCDESC& description = block->function;
    description.memid = function.member;
    description.invkind = function.kind;
    description.callconv = CC_STDCALL;
    description.cParams = static_cast<SHORT>(function.parameters.size());
    description.lprgelemdescParam = block->parameters;
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const ParameterData& parameter = function.parameters[i];
        DescribeType(parameter.type, parameter.type.pointers, block->parameters[i].tdesc, *block);
        block->parameters[i].paramdesc.wParamFlags = parameter.flags;
    }
    const bool inTable = side == TypeInfo::Side::Table;
    description.funckind = inTable ? FUNC_PUREVIRTUAL : FUNC_DISPATCH;
    if (function.slot >= 0) {
        description.oVft = static_cast<SHORT>(function.slot * static_cast<SHORT>(sizeof(void*)));
    }
    DescribeResult(function, side, *block);
    return &description;
}

void FreeFunctionDescription(FUNCDESC* description) {
    // The description comes first in its block.
    delete reinterpret_cast<Block*>(description);
}

}  // namespace quorvane::platform
