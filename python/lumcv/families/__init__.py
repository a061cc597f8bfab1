"""The operations on arrays, a module a family."""
