"""What Python's email package finds in a message: the same description that gmime_reader gives."""

import email
import email.policy

READER = email.policy.default
# Leaves a message inside the message as it came.
AS_IT_CAME = email.policy.SMTP.clone(refold_source="none", max_line_length=None)
ADDRESSES = ("from", "reply-to", "to", "cc")


def content_of(part):
    if part.get_content_type() == "message/rfc822":
        return part.get_payload(0).as_bytes(policy=AS_IT_CAME)
    return part.get_payload(decode=True)


def text_of(part):
    if part.get_content_maintype() != "text":
        return ""
    try:
        return part.get_content()
    except LookupError:  # a character set that Python doesn't know
        return None


def parameter(part, field, name):
    return part[field].params.get(name, "") if part[field] else ""


def describe_part(part):
    return {
        "type": part.get_content_type(),
        "charset": parameter(part, "Content-Type", "charset"),
        "encoding": (part["Content-Transfer-Encoding"] or ""),
        "disposition": part.get_content_disposition() or "",
        "name": parameter(part, "Content-Type", "name"),
        "filename": parameter(part, "Content-Disposition", "filename"),
        "id": str(part["Content-ID"] or "").strip("<>"),
        "text": text_of(part),
        "content": content_of(part).hex(),
        "wire": "" if part.is_multipart() else part.get_payload(),
    }


def is_container(part):
    return part.get_content_maintype() == "multipart" and part.is_multipart()


def leaves(part):
    if not is_container(part):
        return [part]
    return [leaf for inside in part.get_payload() for leaf in leaves(inside)]


def containers(part):
    """The part and all parts in it, but not those of messages inside."""
    yield part
    if is_container(part):
        for inside in part.get_payload():
            yield from containers(inside)


def structure(part):
    if not is_container(part):
        return part.get_content_type()
    inside = ",".join(structure(one) for one in part.get_payload())
    return f"{part.get_content_type()}({inside})"


def fields(part):
    """Names and parsed values; None for a value that the package can't read."""
    for name, value in part.raw_items():
        try:
            yield name, READER.header_fetch_parse(name, value)
        except ValueError:
            yield name, None


def defects(message):
    for part in containers(message):
        for defect in part.defects:
            yield [type(defect).__name__, ""]
        for name, value in fields(part):
            if value is None:
                yield ["unreadable", name]
            else:
                yield from ([type(defect).__name__, name] for defect in value.defects)


def addresses(found, name):
    """None where they can't be read."""
    for other, field in found:
        if other.lower() == name:
            return field and [[a.display_name, a.addr_spec] for a in field.addresses]
    return []


def describe(raw):
    message = email.message_from_bytes(raw, policy=READER)
    found = list(fields(message))
    return {
        "fields": [[name, str(value)] for name, value in found],
        "addresses": {name: addresses(found, name) for name in ADDRESSES},
        "parts": [describe_part(part) for part in leaves(message)],
        "structure": structure(message),
        "defects": list(defects(message)),
    }
