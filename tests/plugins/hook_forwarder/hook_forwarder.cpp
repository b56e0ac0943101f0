// The module lends a function of the system another name; see hook_forwarder.def.
