#!/usr/bin/env python3
"""Writes the C++ data of a type library out of an interface definition.

The native build has no type library file; late binding and type information read this data
instead (platform/automation/type_data.h). What the definition says is taken whole or refused: an
attribute or type that the data can't express is an error, not a silent loss.
"""

import argparse
import re
import sys
from dataclasses import dataclass, field

TOKEN = re.compile(r'"(?:[^"\\]|\\.)*"|[A-Za-z_][A-Za-z_0-9]*|0x[0-9A-Fa-f]+|[0-9]+|[^\sA-Za-z_0-9]')
GUID = re.compile(r"uuid\s*\(\s*([0-9A-Fa-f-]{36})\s*\)")

BASE_TYPES = {
    "void": "VT_VOID", "HRESULT": "VT_HRESULT", "short": "VT_I2", "long": "VT_I4",
    "unsigned char": "VT_UI1", "float": "VT_R4", "double": "VT_R8", "BSTR": "VT_BSTR",
    "VARIANT_BOOL": "VT_BOOL", "VARIANT": "VT_VARIANT",
}
PARAMETER_FLAGS = {"in": "PARAMFLAG_FIN", "out": "PARAMFLAG_FOUT", "retval": "PARAMFLAG_FRETVAL"}
INVOKE_KINDS = {"propget": "INVOKE_PROPERTYGET", "propput": "INVOKE_PROPERTYPUT"}
KNOWN_ATTRIBUTES = {"object", "uuid", "dual", "oleautomation", "helpstring", "pointer_default",
                    "local", "v1_enum", "version", "lcid", "control", "id", "propget", "propput",
                    "in", "out", "retval", "size_is", "default", "source"}
FIRST_OWN_SLOT = 7  # behind the functions of IUnknown and IDispatch


@dataclass
class Parameter:
    name: str
    type: tuple  # (name, number of '*')
    flags: list


@dataclass
class Function:
    name: str
    attributes: dict
    result: tuple
    parameters: list


@dataclass
class Type:
    kind: str  # enum, interface, dispinterface, coclass
    name: str
    attributes: dict
    functions: list = field(default_factory=list)
    constants: list = field(default_factory=list)
    implemented: list = field(default_factory=list)  # (attributes, name)


class Reader:
    """A definition as a sequence of tokens."""

    def __init__(self, text):
        text = re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL)
        text = re.sub(r"^\s*cpp_quote\(.*\)\s*$", "", text, flags=re.MULTILINE)
        # An identifier's digits and letters would fall apart into many tokens.
        text = GUID.sub(r'uuid("\1")', text)
        self.tokens = TOKEN.findall(text)
        self.position = 0

    def peek(self):
        return self.tokens[self.position] if self.position < len(self.tokens) else ""

    def next(self):
        token = self.peek()
        if not token:
            raise ValueError("the definition ends too early")
        self.position += 1
        return token

    def accept(self, token):
        if self.peek() != token:
            return False
        self.position += 1
        return True

    def expect(self, *tokens):
        for token in tokens:
            found = self.next()
            if found != token:
                raise ValueError(f"'{token}' expected, not '{found}'")

    def attributes(self):
        """A list in brackets, if there is one: names with the tokens in their parentheses."""
        found = {}
        if not self.accept("["):
            return found
        while not self.accept("]"):
            name = self.next()
            if name not in KNOWN_ATTRIBUTES:
                raise ValueError(f"attribute '{name}' isn't supported")
            value = []
            if self.accept("("):
                depth = 1
                while depth:
                    token = self.next()
                    depth += (token == "(") - (token == ")")
                    if depth:
                        value.append(token)
            found[name] = value
            self.accept(",")
        return found

    def type(self):
        name = self.next()
        if name == "unsigned":
            name += " " + self.next()
        pointers = 0
        while self.accept("*"):
            pointers += 1
        return name, pointers

    def function(self):
        attributes = self.attributes()
        result = self.type()
        name = self.next()
        self.expect("(")
        parameters = []
        while not self.accept(")"):
            flags = self.attributes()
            parameter_type = self.type()
            parameters.append(Parameter(self.next(), parameter_type,
                                        [flag for flag in PARAMETER_FLAGS if flag in flags]))
            self.accept(",")
        self.expect(";")
        return Function(name, attributes, result, parameters)

    def functions(self):
        found = []
        while not self.accept("}"):
            found.append(self.function())
        return found


class Definition:
    """What stands in a definition: types by name, and the library with its types in order."""

    def __init__(self, text):
        self.types = {}
        self.library = None
        self.members = []
        self.read(Reader(text))

    def read(self, reader):
        while reader.peek():
            if reader.accept("import"):
                reader.next()
                reader.expect(";")
            elif reader.accept("typedef"):
                self.enumeration(reader)
            else:
                attributes = reader.attributes()
                kind = reader.next()
                if kind == "library":
                    self.library = (reader.next(), attributes)
                    self.library_block(reader)
                elif kind == "interface":
                    self.interface(reader, attributes)
                else:
                    raise ValueError(f"'{kind}' isn't supported")

    def enumeration(self, reader):
        enumeration = Type("enum", "", reader.attributes())
        reader.expect("enum")
        enumeration.name = reader.next()
        reader.expect("{")
        while not reader.accept("}"):
            name = reader.next()
            reader.expect("=")
            enumeration.constants.append((name, int(reader.next(), 0)))
            reader.accept(",")
        reader.expect(enumeration.name, ";")
        self.types[enumeration.name] = enumeration

    def interface(self, reader, attributes):
        """Reads an interface, or only its name; returns the name."""
        name = reader.next()
        if reader.accept(";"):
            return name
        reader.expect(":")
        base = reader.next()
        reader.expect("{")
        functions = reader.functions()
        reader.accept(";")
        if "local" not in attributes and (base != "IDispatch" or "dual" not in attributes):
            raise ValueError(f"{name} is neither dual nor local")
        self.types[name] = Type("interface", name, attributes, functions)
        return name

    def library_block(self, reader):
        reader.expect("{")
        while not reader.accept("}"):
            if reader.accept("importlib"):
                reader.expect("(")
                reader.next()
                reader.expect(")", ";")
                continue
            attributes = reader.attributes()
            kind = reader.next()
            if kind == "interface":
                name = self.interface(reader, attributes)
            elif kind == "dispinterface":
                name = self.dispinterface(reader, attributes)
            elif kind == "coclass":
                name = self.coclass(reader, attributes)
            else:
                raise ValueError(f"'{kind}' isn't supported in a library")
            if name not in self.members:
                self.members.append(name)
        reader.accept(";")

    def dispinterface(self, reader, attributes):
        name = reader.next()
        reader.expect("{", "properties", ":", "methods", ":")
        self.types[name] = Type("dispinterface", name, attributes, reader.functions())
        reader.accept(";")
        return name

    def coclass(self, reader, attributes):
        coclass = Type("coclass", reader.next(), attributes)
        reader.expect("{")
        while not reader.accept("}"):
            implemented = reader.attributes()
            reader.next()  # interface or dispinterface
            coclass.implemented.append((implemented, reader.next()))
            reader.expect(";")
        reader.accept(";")
        self.types[coclass.name] = coclass
        return coclass.name

    def ordered(self, first):
        """The library's types: those named, then interfaces, the enumerations that they use, and
        classes, each in the order of the definition."""
        used = {parameter.type[0] for name in self.members
                for function in self.types[name].functions for parameter in function.parameters}
        enumerations = [name for name, found in self.types.items()
                        if found.kind == "enum" and name in used]
        rest = [name for name in self.members if name not in first]
        classes = [name for name in rest if self.types[name].kind == "coclass"]
        interfaces = [name for name in rest if name not in classes]
        return [self.types[name] for name in first + interfaces + enumerations + classes]


def text(value):
    """A wide string literal; a null pointer for no text."""
    return "nullptr" if value is None else "u" + value


def help_text(attributes):
    return text(attributes["helpstring"][0] if "helpstring" in attributes else None)


def guid(attributes):
    if "uuid" not in attributes:
        return "{}"
    digits = attributes["uuid"][0].strip('"').replace("-", "")
    rest = ", ".join("0x" + digits[i:i + 2] for i in range(16, 32, 2))
    return f"{{0x{digits[:8]}, 0x{digits[8:12]}, 0x{digits[12:16]}, {{{rest}}}}}"


class Writer:
    def __init__(self, definition, first):
        self.definition = definition
        self.types = definition.ordered(first)
        self.index = {found.name: index for index, found in enumerate(self.types)}
        self.lines = []

    def type_reference(self, reference):
        name, pointers = reference
        if name in BASE_TYPES:
            return f"{{{BASE_TYPES[name]}, {pointers}, -1}}"
        if name in self.index:
            return f"{{VT_USERDEFINED, {pointers}, {self.index[name]}}}"
        raise ValueError(f"type '{name}' isn't supported or not in the library")

    def functions(self, owner):
        for index, function in enumerate(owner.functions):
            if function.parameters:
                self.lines.append(f"constexpr ParameterData k{owner.name}{index}[] = {{")
                for parameter in function.parameters:
                    flags = " | ".join(PARAMETER_FLAGS[flag] for flag in parameter.flags)
                    self.lines.append(f'    {{u"{parameter.name}", '
                                      f"{self.type_reference(parameter.type)}, {flags or '0'}}},")
                self.lines.append("};")
        self.lines.append(f"constexpr FunctionData k{owner.name}Functions[] = {{")
        for index, function in enumerate(owner.functions):
            kinds = [INVOKE_KINDS[name] for name in INVOKE_KINDS if name in function.attributes]
            slot = FIRST_OWN_SLOT + index if owner.kind == "interface" else -1
            parameters = f"k{owner.name}{index}" if function.parameters else "{}"
            self.lines.append(
                f'    {{u"{function.name}", {help_text(function.attributes)}, '
                f"{function.attributes['id'][0]}, {kinds[0] if kinds else 'INVOKE_FUNC'}, "
                f"{self.type_reference(function.result)}, {parameters}, {slot}}},")
        self.lines.append("};")

    def members(self, owner):
        """Writes the arrays that belong to a type; returns their names for its entry."""
        names = ["{}", "{}", "{}"]
        if owner.functions:
            self.functions(owner)
            names[0] = f"k{owner.name}Functions"
        if owner.constants:
            names[1] = f"k{owner.name}Constants"
            self.lines.append(f"constexpr ConstantData {names[1]}[] = {{")
            self.lines += [f'    {{u"{name}", {value}}},' for name, value in owner.constants]
            self.lines.append("};")
        if owner.implemented:
            names[2] = f"k{owner.name}Implemented"
            self.lines.append(f"constexpr ImplementedData {names[2]}[] = {{")
            for attributes, name in owner.implemented:
                flags = [flag for attribute, flag in (("default", "IMPLTYPEFLAG_FDEFAULT"),
                                                      ("source", "IMPLTYPEFLAG_FSOURCE"))
                         if attribute in attributes]
                self.lines.append(f"    {{{self.index[name]}, {' | '.join(flags) or '0'}}},")
            self.lines.append("};")
        return names

    @staticmethod
    def flags(owner):
        if owner.kind == "interface":
            return "TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE"
        if owner.kind == "dispinterface":
            return "TYPEFLAG_FDISPATCHABLE"
        if owner.kind == "coclass":
            return "TYPEFLAG_FCANCREATE" + (
                " | TYPEFLAG_FCONTROL" if "control" in owner.attributes else "")
        return "0"

    def write(self):
        kinds = {"enum": "TKIND_ENUM", "interface": "TKIND_DISPATCH",
                 "dispinterface": "TKIND_DISPATCH", "coclass": "TKIND_COCLASS"}
        self.lines = ["// Made by scripts/idl/generate_type_data.py; changes belong into the "
                      "interface definition.",
                      '#include "platform/automation/type_data.h"', "",
                      "namespace quorvane::platform {", "namespace {", ""]
        entries = []
        for owner in self.types:
            names = self.members(owner)
            entries.append(f'    {{u"{owner.name}", {help_text(owner.attributes)}, '
                           f"{guid(owner.attributes)}, {kinds[owner.kind]}, {self.flags(owner)}, "
                           f"{', '.join(names)}}},")
        name, attributes = self.definition.library
        major, _, minor = "".join(attributes["version"]).partition(".")
        self.lines += ["", "constexpr TypeData kTypes[] = {", *entries, "};", "",
                       "}  // namespace", "",
                       f'constinit const LibraryData kTypeLibrary = {{u"{name}", '
                       f"{help_text(attributes)}, {guid(attributes)}, "
                       f"{attributes['lcid'][0]}, {major}, {minor}, kTypes}};", "",
                       "}  // namespace quorvane::platform", ""]
        return "\n".join(self.lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("definition", help="interface definition file")
    parser.add_argument("output", help="C++ file to write")
    parser.add_argument("first", nargs="*", help="types that come first in the library")
    arguments = parser.parse_args()
    with open(arguments.definition, encoding="utf-8") as file:
        source = file.read()
    try:
        data = Writer(Definition(source), arguments.first).write()
    except (ValueError, KeyError) as error:
        sys.exit(f"{arguments.definition}: {error}")
    with open(arguments.output, "w", encoding="utf-8") as file:
        file.write(data)


if __name__ == "__main__":
    main()
