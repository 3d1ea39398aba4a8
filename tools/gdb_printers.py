"""Shows the library's classes in gdb as the values they hold.

gdb loads the installed file together with the library; elsewhere, `source` it. Everything is read
from memory, no function of the program is called: a core file serves as well as a process.
"""

import datetime
import functools
import re

import gdb
import gdb.printing
import gdb.types

INVALID = '<invalid>'
UNKNOWN = '<libmiroxgcl has no debug information>'
FAULTS = (gdb.error, RuntimeError, ValueError, OverflowError, LookupError)

ESCAPES = {ord('"'): '\\"', ord('\\'): '\\\\', ord('\n'): '\\n', ord('\r'): '\\r', ord('\t'): '\\t'}
SEVERITIES = {0: 'information', 4: 'warning', 6: 'error'}
EPOCH = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)
SECONDS_A_DAY = 86400
NO_DURATION = 4294967295


def unreadable():
    """What stands for a value that cannot be read: without the library's types none can."""
    try:
        known = gdb.lookup_type('GCL_StringRep').fields()
    except FAULTS:
        known = ()
    return INVALID if known else UNKNOWN


class Printer:
    """Prints what `read` makes of a value: a text, which may be None, and named children."""

    hint = None

    def __init__(self, read, value):
        try:
            self.text, self.items = read(value)
        except FAULTS:
            self.text, self.items = unreadable(), ()

    def to_string(self):
        return self.text

    def children(self):
        try:
            for name, item in self.items:
                if isinstance(item, gdb.Value):
                    item.fetch_lazy()
                yield name, item
        except FAULTS:
            yield 'rest', unreadable()

    def display_hint(self):
        return self.hint


class ListPrinter(Printer):
    """Prints children without their names."""

    hint = 'array'


# --- How the fields are laid out.


def require(condition):
    """Gives a value up that breaks an invariant of its class."""
    if not condition:
        raise ValueError(INVALID)


def class_name(value_type):
    """The class template's name, or the class's; None for a type nested in one."""
    match = re.fullmatch(r'(\w+)(<.*>)?', gdb.types.get_basic_type(value_type).name or '')
    return match and match.group(1)


def base_type(value_type, name):
    """The first base of that name, or the type itself."""
    while class_name(value_type) != name:
        value_type = gdb.types.get_basic_type(value_type).fields()[0].type
    return gdb.types.get_basic_type(value_type)


def pointee(pointer):
    """What a pointer points at, as the object's own class."""
    target = pointer.cast(pointer.dynamic_type).dereference()
    target.fetch_lazy()
    return target


def owned(owner):
    """The only pointer in a std::unique_ptr, however the standard library wraps it."""
    for field in gdb.types.get_basic_type(owner.type).fields():
        member = owner[field]
        code = member.type.strip_typedefs().code
        if code == gdb.TYPE_CODE_PTR:
            return member
        if code == gdb.TYPE_CODE_STRUCT:
            found = owned(member)
            if found is not None:
                return found
    return None


# --- Strings and handles.


def rep_text(rep):
    """A string body's text, quoted, cut as gdb is set to cut strings."""
    length = int(rep['m_length'])
    require(length < int(rep['m_capacity']))
    shown = min(length, gdb.parameter('print elements') or length)
    # The terminator's place is read too: an empty text's buffer must exist.
    data = gdb.selected_inferior().read_memory(int(rep['m_buffer']), shown + 1).tobytes()[:shown]
    text = ''.join(
        ESCAPES.get(byte) or (chr(byte) if 32 <= byte < 127 else f'\\{byte:03o}') for byte in data)
    return f'"{text}"' if shown == length else f'"{text}"... (length {length})'


def string_text(string):
    """A string's text; a body that is not, or no longer, a string's makes the string invalid."""
    body = string['m_body']
    if not body:
        return '""'
    rep = pointee(body)
    require(class_name(rep.type) == 'GCL_StringRep')
    return rep_text(rep)


def read_string(string):
    return string_text(string), ()


def read_name(user_or_group):
    return string_text(user_or_group['m_name']), ()


def read_string_rep(rep):
    fields = ('length', 'capacity', 'reference_count')
    return None, [('text', rep_text(rep))] + [(name, rep['m_' + name]) for name in fields]


def read_handle(handle):
    body = handle['m_body']
    return (None, [('body', pointee(body))]) if body else ('no body', ())


def read_body(body):
    return f"count {int(body['m_reference_count'])}", ()


# --- Containers.


def array_items(array, item_type):
    """The length of an LX_TDynamic and its items, in order."""
    start, stop, size = (int(array[name]) for name in ('m_start', 'm_stop', 'm_size'))
    require(max(start, stop) <= size and (start == 0) == (stop == 0))
    length = 0 if start == 0 else stop - start + 1 + (size if start > stop else 0)
    slots = array['m_items'].cast(item_type.pointer())
    if length != 0:
        slots[start - 1].fetch_lazy()
    return length, ((f'[{i}]', slots[(start - 1 + i) % size]) for i in range(length))


def linked_items(linked):
    """The length of an LX_TUnbounded and its items, in order; its links are checked on the way."""

    def items():
        node = linked['m_head']
        for i in range(length):
            require(node)
            yield f'[{i}]', node['m_item']
            node = node['m_next']

    length = int(linked['m_size'])
    require((length == 0) == (not linked['m_head']))
    if length != 0:
        pointee(linked['m_head'])
    return length, items()


def list_summary(value, length, items):
    return f'{class_name(value.type)} of length {length}', items


def read_array(array):
    item_type = base_type(array.type, 'LX_TDynamic').template_argument(0)
    return list_summary(array, *array_items(array, item_type))


def read_collection(collection):
    item_type = base_type(collection.type, 'LX_TDynamicCollection').template_argument(0)
    return list_summary(collection, *array_items(collection['m_dynamic'], item_type))


def read_handle_list(handles):
    item_type = base_type(handles.type, 'DRL_ListBase').template_argument(0)
    collection = owned(handles['m_collection'])
    if not collection:
        return list_summary(handles, 0, ())
    return list_summary(handles, *array_items(collection['m_dynamic'], item_type))


def read_linked(linked):
    return list_summary(linked, *linked_items(linked))


def read_stack(stack):
    return list_summary(stack, *linked_items(stack['m_unbounded']))


# --- Statuses.


def read_status(status):
    code = int(status['m_value'])
    grabs = int(status['m_grab_count'])
    stack = owned(status['m_message_stack'])
    children = [('messages', pointee(stack))] if stack else []
    if grabs != 0:
        children.append(('grabs', grabs))
    return f"code {code}, {'ok' if code == 0 else 'not ok'}", children


def read_collector(collector):
    flags = collector['m_has_severity']
    found = [SEVERITIES.get(i, str(i)) for i in range(flags.type.range()[1] + 1) if flags[i]]
    severities = '{' + ', '.join(found) + '}'
    return None, [('severities', severities), ('collected', collector['m_messages'])]


def read_status_base(status):
    text, children = read_status(status)
    collector = owned(status['m_collector'])
    if collector:
        children += read_collector(pointee(collector))[1]
    return text, children


# --- Times.


def time_text(seconds):
    """A time as the library reads it, and as dates in UTC and in the debugger's own time zone."""
    if seconds == 0:
        return 'no time'
    try:
        utc = EPOCH + datetime.timedelta(seconds=seconds)
        local = utc.astimezone()
    except (ValueError, OverflowError, OSError):  # beyond the years that Python counts
        return f'@{seconds}'
    return f'@{seconds} ({utc:%Y-%m-%d %H:%M:%S} UTC, {local:%Y-%m-%d %H:%M:%S %z} local)'


def read_time(time):
    return time_text(int(time['m_time'])), ()


def read_time_period(period):
    seconds = int(period['m_duration'])
    duration = 'none' if seconds == NO_DURATION else f'{seconds} s ({seconds / SECONDS_A_DAY:g} d)'
    return None, [('begin', period['m_begin']), ('end', period['m_end']), ('duration', duration)]


def read_credentials(credentials):
    names = ('user', 'primary_group', 'secondary_groups')
    parts = [(name, owned(credentials['m_' + name])) for name in names]
    children = [(name, pointee(part)) for name, part in parts if part]
    return None if children else 'no parts', children


# --- Which class is printed how.

VALUES = {
    'GCL_String': read_string,
    'GCL_Pathname': read_string,
    'GCL_StringRep': read_string_rep,
    'GCL_HandleBase': read_handle,
    'GCL_Handle': read_handle,
    'GCL_Status': read_status,
    'GCL_StatusBase': read_status_base,
    'GCL_ImsgCollector': read_collector,
    'LX_CTime': read_time,
    'GCL_DateTime': read_time,
    'GCL_TimePeriod': read_time_period,
    'GCL_OSUser': read_name,
    'GCL_OSGroup': read_name,
    'GCL_Credentials': read_credentials,
}

LISTS = {
    'LX_TDynamic': read_array,
    'LX_TDynamicCollection': read_collection,
    'GCL_IntegerList': read_collection,
    'GCL_OSUserList': read_collection,
    'GCL_OSGroupList': read_collection,
    'DRL_ListBase': read_handle_list,
    'GCL_StringList': read_handle_list,
    'LX_TUnbounded': read_linked,
    'LX_TUnboundedStack': read_stack,
    'GCL_ErrMsgStack': read_stack,
}


def own_printer(value):
    """An interface's printer: that of the object's own class or of a base; None without one."""
    try:
        if value.type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = value.referenced_value()
        value = value.cast(value.dynamic_type.strip_typedefs())
        while class_name(value.type) not in VALUES.keys() | LISTS.keys():
            value = value.cast(value.type.fields()[0].type)  # fails where there is no base
    except FAULTS:
        return None
    return PRINTERS(value)


def body_printer(body):
    return own_printer(body) or Printer(read_body, body)


def all_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter('miroxgcl')

    def add(name, make):
        printers.add_printer(name, f'^{name}(<.*>)?$', make)

    for name, read in VALUES.items():
        add(name, functools.partial(Printer, read))
    for name, read in LISTS.items():
        add(name, functools.partial(ListPrinter, read))
    add('LX_TCollection', own_printer)
    add('LX_TStack', own_printer)
    add('GCL_Body', body_printer)
    return printers


PRINTERS = all_printers()
gdb.printing.register_pretty_printer(gdb.current_objfile(), PRINTERS, replace=True)
