// A module that has resources and nothing else.
