#!/bin/sh
A='never closed ${