"""Composes pages whose turn and corners are known, and holds detectors against them."""
