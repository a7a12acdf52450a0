"""The filter framekeeper.copies.answer."""

from __future__ import annotations


def answer(result, host):
    """The document that framekeeper-cli report reads, from what the module facts returned for a host, whatever it was."""
    facts = {"framekeeper": 1, "host": host}
    if result.get("gathered"):
        facts["gathered"] = result["gathered"]
    if result.get("unreachable"):
        return {**facts, "answer": "never", "reason": str(result.get("msg", "")).strip() or "The host could not be reached"}
    document = result.get("document")
    if not isinstance(document, dict):
        reason = str(result.get("msg", "")).strip() or "The host told nothing"
        return {**facts, "answer": result.get("answer", "failed"), "reason": reason}
    facts = {**document, **facts, "answer": result.get("answer", "complete")}
    return {**facts, "reason": result["reason"]} if result.get("reason") else facts


class FilterModule:
    def filters(self):
        return {"answer": answer}
